#pragma once

#include "screens/dashboard/DashboardView.h"
#include "screens/dashboard/DictationListView.h"
#include "screens/dashboard/DictionaryView.h"
#include "screens/dashboard/InsightsView.h"

#include <QVariantMap>

class HistoryStore;
class Pasteboard;

/// The models of the dashboard's screens, made when the window is.
class DashboardScreens
{
public:
    struct Needs
    {
        DashboardView::Needs frame;
        HistoryStore &history;
        Pasteboard &pasteboard;
    };
    explicit DashboardScreens(const Needs &needs);

    /// The models by the property names of the window.
    QVariantMap models();

    /// Whether the window is on the screen.
    void setShown(bool shown);

private:
    DashboardNavigation &m_navigation;
    DashboardView m_frame;
    DictationListView m_dictations;
    InsightsView m_insights;
    DictionaryView m_dictionary;
};
