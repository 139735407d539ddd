#pragma once

#include "history/LeftRecordings.h"
#include "program/ControlService.h"
#include "program/Host.h"
#include "program/MainMenuKeys.h"
#include "program/Windows.h"
#include "tray/MainMenu.h"
#include "tray/MenuView.h"
#include "tray/TrayIcon.h"

#include <QObject>

struct Platform;

/// The program that stays: its windowless part, its windows, what shows it in the panel, and what
/// others reach it by.
class SayvaneApp final : public QObject
{
    Q_OBJECT
public:
    /// `serviceAddress` is the hosted service that a user who chose none dictates to. Needs the profile's
    /// lock and a graphical application object.
    SayvaneApp(Platform &platform, const QString &serviceAddress, const QString &iconsFolder,
               const WindowEngine::Maker &makeWindowEngine);

    /// Begins to answer on the session bus, shows the icon and starts the shortcut.
    void launch(const QString &profile);

private:
    bool openSection(const QString &section);
    void follow();

    LeftRecordings m_leftRecordings;
    Host m_host;
    MainMenu m_mainMenu;
    MainMenuKeys m_mainMenuKeys;
    Windows m_windows;
    SettingsOpener m_settings;
    MenuView m_menu;
    TrayIcon m_tray;
    ControlService m_control;
};
