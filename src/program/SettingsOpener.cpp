#include "program/SettingsOpener.h"

#include "tray/MainMenu.h"

#include <utility>

SettingsOpener::SettingsOpener(MainMenu &menu, std::function<void()> activate, Handler showSettingsWindow,
                               Handler showPreferencesWindow)
    : m_menu(menu),
      m_activate(std::move(activate)),
      m_showSettingsWindow(std::move(showSettingsWindow)),
      m_showPreferencesWindow(std::move(showPreferencesWindow))
{
}

void SettingsOpener::open()
{
    m_activate();
    m_menu.installIfNeeded();
    if (!m_showSettingsWindow())
        m_showPreferencesWindow();
}
