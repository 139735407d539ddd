#pragma once

#include <functional>

class MainMenu;

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
