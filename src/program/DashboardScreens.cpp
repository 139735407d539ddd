#include "program/DashboardScreens.h"

#include "base/Platform.h"
#include "program/Host.h"
#include "screens/dashboard/DashboardNavigation.h"

#include <utility>

using namespace Qt::StringLiterals;

FormScreens::FormScreens(Host &host, Platform &platform, std::function<void()> openSettings)
    : m_settings({.platform = platform,
                  .prefs = host.prefs(),
                  .keychain = host.keychain(),
                  .sessions = host.sessions(),
                  .accountStatus = host.account(),
                  .signIn = host.signIn(),
                  .transcriber = host.transcriber(),
                  .recorder = host.hotkeyRecorder(),
                  .updateHotkey = [&host](const HotkeySpec &spec) { host.flow().updateHotkey(spec); }}),
      m_labs({.session = host.labs(),
              .answerMode = host.answerMode(),
              .prefs = host.prefs(),
              .pasteboard = platform.pasteboard,
              .inserter = host.flow().inserter(),
              .dictation = {.state = [&host] { return host.flow().state(); },
                            .captureNextTranscript =
                                [&host](auto into) { host.flow().captureNextTranscript(std::move(into)); },
                            .finishRecording = [&host] { host.flow().finishRecording(false); }},
              .openSettings = std::move(openSettings)})
{
    QObject::connect(&host.flow(), &FlowController::stateChanged, &m_labs, &LabsView::flowStateChanged);
}

QVariantMap FormScreens::models()
{
    return {{u"settings"_s, QVariant::fromValue(&m_settings)}, {u"labs"_s, QVariant::fromValue(&m_labs)}};
}

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
