#pragma once

#include "screens/dashboard/DashboardView.h"
#include "screens/dashboard/DictationListView.h"
#include "screens/dashboard/DictionaryView.h"
#include "screens/dashboard/InsightsView.h"
#include "screens/labs/LabsView.h"
#include "screens/settings/SettingsView.h"

#include <QVariantMap>

#include <functional>

class HistoryStore;
class Host;
class Pasteboard;
struct Platform;

/// The models of the screens on which the user writes: the settings and Labs.
class FormScreens
{
public:
    /// `openSettings` shows the settings in the dashboard.
    FormScreens(Host &host, Platform &platform, std::function<void()> openSettings);

    SettingsForms &settings() { return m_settings; }

    /// The models by the property names of the window.
    QVariantMap models();

private:
    SettingsForms m_settings;
    LabsView m_labs;
};

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
