#include "machine/LinuxMachine.h"

QString LinuxMachine::displayObjection()
{
    return WaylandConnection::answers() ? QString() : X11Connection::objection();
}

LinuxMachine::LinuxMachine(const Settings &settings)
    : m_folders(settings.profile),
      m_defaults(m_folders.configuration(), m_clock),
      m_secrets(m_clock, settings.profile),
      m_http(settings.userAgent),
      m_microphone(m_pulse),
      m_sounds(m_pulse, settings.soundsFolder),
      m_windowKeys(m_desktop.fnTakesControl()),
      m_autostart(m_folders.userConfiguration(), settings.profile),
      m_platform{.clock = m_clock,
                 .folders = m_folders,
                 .volumes = m_volumes,
                 .defaults = m_defaults,
                 .secrets = m_secrets,
                 .computerName = m_computerName,
                 .workspace = m_workspace,
                 .http = m_http,
                 .trust = m_desktop,
                 .microphone = m_microphone,
                 .sounds = m_sounds,
                 .keyTaps = m_desktop,
                 .keyPoster = m_desktop,
                 .pasteboard = m_desktop.pasteboard(),
                 .localKeys = m_windowKeys,
                 .activation = m_activation,
                 .appearance = m_appearance,
                 .panels = m_desktop,
                 .graphics = m_graphics,
                 .autostart = m_autostart,
                 .background = m_background,
                 .presence = m_presence}
{
}
