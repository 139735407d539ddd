#include "program/DashboardScreens.h"

#include "screens/dashboard/DashboardNavigation.h"

using namespace Qt::StringLiterals;

DashboardScreens::DashboardScreens(const Needs &needs)
    : m_navigation(needs.frame.navigation),
      m_frame(needs.frame),
      m_dictations(needs.history, needs.frame.prefs, needs.frame.clock, needs.pasteboard),
      m_insights(needs.history, needs.frame.prefs, needs.frame.clock),
      m_dictionary(needs.frame.prefs)
{
    QObject::connect(&m_frame, &DashboardView::dayBegan, &m_dictations, &DictationListView::refresh);
    QObject::connect(&m_frame, &DashboardView::dayBegan, &m_insights, &InsightsView::refresh);
}

QVariantMap DashboardScreens::models()
{
    return {{u"dashboard"_s, QVariant::fromValue(&m_frame)},
            {u"navigation"_s, QVariant::fromValue(&m_navigation)},
            {u"dictations"_s, QVariant::fromValue(&m_dictations)},
            {u"insights"_s, QVariant::fromValue(&m_insights)},
            {u"dictionary"_s, QVariant::fromValue(&m_dictionary)}};
}

void DashboardScreens::setShown(bool shown)
{
    m_frame.setShown(shown);
    if (!shown)
        m_dictations.setConfirmingClear(false); // a question is not there again when the window is
}
