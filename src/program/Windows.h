#pragma once

#include "program/DashboardScreens.h"
#include "program/DashboardWindowController.h"
#include "program/SettingsWindow.h"
#include "screens/dashboard/DashboardNavigation.h"

#include <functional>
#include <optional>

class Host;
class MainMenu;
struct Platform;

/// The one way to the settings from outside the windows.
class SettingsOpener
{
public:
    /// Shows the settings; false when this window has none to show.
    using Handler = std::function<bool()>;

    /// `activate` brings the program to the front, whatever was there.
    SettingsOpener(MainMenu &menu, std::function<void()> activate, Handler showSettingsWindow,
                   Handler showPreferencesWindow);

    /// Asks the first handler, and only where it did nothing the second.
    void open();

private:
    MainMenu &m_menu;
    std::function<void()> m_activate;
    Handler m_showSettingsWindow;
    Handler m_showPreferencesWindow;
};

/// The program's windows. Until the first one is opened they cost next to nothing.
class Windows
{
public:
    struct Hooks
    {
        /// Gives windows their editing commands.
        std::function<void()> installMainMenu = [] {};
        /// No shortcut is being chosen any more.
        std::function<void()> cancelShortcutCapture = [] {};
    };
    Windows(Host &host, Platform &platform, const WindowEngine::Maker &makeEngine, Hooks hooks);

    /// Opens the dashboard where the user left it, or brings it to the front.
    void openDashboard() { m_dashboard.show(); }
    /// Opens the dashboard at its settings.
    void openSettings();
    /// Opens the settings in a window of their own, or brings it to the front.
    void openSettingsWindow() { m_settings.show(); }

    DashboardNavigation &navigation() { return m_navigation; }
    DashboardWindowController &dashboard() { return m_dashboard; }
    SettingsWindow &settings() { return m_settings; }

private:
    QVariantMap models();
    void tellOfUpdate();

    Host &m_host;
    Platform &m_platform;
    WindowEngine::Maker m_makeEngine;
    DashboardNavigation m_navigation;
    std::optional<DashboardScreens> m_screens; // from the first opening on
    FormScreens m_forms;
    DashboardWindowController m_dashboard;
    SettingsWindow m_settings;

    Q_DECLARE_TR_FUNCTIONS(Windows)
};
