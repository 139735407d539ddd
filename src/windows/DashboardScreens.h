#pragma once

#include "dashboard/DashboardView.h"
#include "dashboard/DictationListView.h"
#include "dashboard/DictionaryView.h"
#include "dashboard/InsightsView.h"

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
