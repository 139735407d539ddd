#pragma once

#include "base/Platform.h"
#include "machine/DesktopAccess.h"
#include "machine/desktop/DesktopActivation.h"
#include "machine/desktop/DesktopPresence.h"
#include "machine/desktop/DesktopWorkspace.h"
#include "machine/desktop/DeviceGraphics.h"
#include "machine/desktop/DiskThread.h"
#include "machine/desktop/HostName.h"
#include "machine/desktop/PortalAppearance.h"
#include "machine/desktop/PreferencesFile.h"
#include "machine/desktop/SecretServiceStore.h"
#include "machine/desktop/SystemClock.h"
#include "machine/desktop/XdgAutostart.h"
#include "machine/desktop/XdgFolders.h"
#include "machine/network/NetworkTransport.h"
#include "machine/sound/PulseConnection.h"
#include "machine/sound/PulseMicrophone.h"
#include "machine/sound/PulseSoundPlayer.h"
#include "machine/x11/WindowKeys.h"

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

    /// Why there is no display for windows, Wayland's or X11's, in one sentence for the user; empty when
    /// there is one. Asked before anything depends on it.
    static QString displayObjection();

    Platform &platform() { return m_platform; }
    X11Connection &x11() { return m_desktop.x11(); }

private:
    SystemClock m_clock;
    XdgFolders m_folders;
    PreferencesFile m_defaults;
    PortalAppearance m_appearance;
    DesktopAccess m_desktop{m_defaults, m_appearance};
    PulseConnection m_pulse; // begins to connect while the rest is made
    StatVolumes m_volumes;
    SecretServiceStore m_secrets;
    HostName m_computerName;
    DesktopWorkspace m_workspace;
    NetworkTransport m_http;
    PulseMicrophone m_microphone;
    PulseSoundPlayer m_sounds;
    WindowKeys m_windowKeys;
    DesktopActivation m_activation;
    DeviceGraphics m_graphics;
    XdgAutostart m_autostart;
    DiskThread m_background;
    DesktopPresence m_presence;
    Platform m_platform;
};
