#pragma once

#include "platform/Platform.h"
#include "platform/linux/clipboard/PasteboardThread.h"
#include "platform/linux/panel/X11FloatingPanels.h"
#include "platform/linux/sound/PulseConnection.h"
#include "platform/linux/sound/PulseMicrophone.h"
#include "platform/linux/sound/PulseSoundPlayer.h"
#include "platform/linux/system/DesktopActivation.h"
#include "platform/linux/system/DesktopPresence.h"
#include "platform/linux/system/DesktopWorkspace.h"
#include "platform/linux/system/DeviceGraphics.h"
#include "platform/linux/system/DiskThread.h"
#include "platform/linux/system/HostName.h"
#include "platform/linux/system/NetworkTransport.h"
#include "platform/linux/system/PortalAppearance.h"
#include "platform/linux/system/PreferencesFile.h"
#include "platform/linux/system/SecretServiceStore.h"
#include "platform/linux/system/StatVolumes.h"
#include "platform/linux/system/SystemClock.h"
#include "platform/linux/system/XdgAutostart.h"
#include "platform/linux/system/XdgFolders.h"
#include "platform/linux/wayland/WaylandPasteboard.h"
#include "platform/linux/windows/WindowKeys.h"
#include "platform/linux/windows/WindowPasteboard.h"
#include "platform/linux/x11/X11Desktop.h"

#include <QString>

#include <memory>

/// The Linux desktop as one machine.
class LinuxMachine
{
public:
    struct Settings
    {
        QString profile;      ///< folders and secrets of its own; empty for the ordinary one
        QString soundsFolder; ///< where the four sounds are
        QByteArray userAgent; ///< what services are told that we are
    };
    explicit LinuxMachine(const Settings &settings);

    Platform &platform() { return m_platform; }
    X11Desktop &desktop() { return m_desktop; }

private:
    Pasteboard &pasteboard();

    X11Desktop m_desktop;
    std::unique_ptr<PasteboardThread> m_waylandPasteboard = WaylandPasteboard::inThread();
    std::unique_ptr<WindowPasteboard> m_windowPasteboard; // where there is no other
    X11FloatingPanels m_panels{m_desktop.connection()};
    PulseConnection m_pulse; // begins to connect while the rest is made
    SystemClock m_clock;
    XdgFolders m_folders;
    StatVolumes m_volumes;
    PreferencesFile m_defaults;
    SecretServiceStore m_secrets;
    HostName m_computerName;
    DesktopWorkspace m_workspace;
    NetworkTransport m_http;
    PulseMicrophone m_microphone;
    PulseSoundPlayer m_sounds;
    WindowKeys m_windowKeys;
    DesktopActivation m_activation;
    PortalAppearance m_appearance;
    DeviceGraphics m_graphics;
    XdgAutostart m_autostart;
    DiskThread m_background;
    DesktopPresence m_presence;
    Platform m_platform;
};
