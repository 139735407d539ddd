#include "machine/LinuxMachine.h"

#include "machine/desktop/NotificationPanel.h"

#include <QGuiApplication>

namespace {

bool isOnWayland()
{
    return QGuiApplication::platformName().startsWith(u"wayland");
}

std::unique_ptr<FloatingPanels> panelsOf(X11Desktop &desktop)
{
    if (isOnWayland())
        return std::make_unique<NotificationPanels>();
    return std::make_unique<X11FloatingPanels>(desktop.connection());
}

} // namespace

QString LinuxMachine::displayObjection()
{
    return WaylandConnection::answers() ? QString() : X11Connection::objection();
}

LinuxMachine::LinuxMachine(const Settings &settings)
    : m_panels(panelsOf(m_desktop)),
      m_folders(settings.profile),
      m_defaults(m_folders.configuration(), m_clock),
      m_secrets(m_clock, settings.profile),
      m_http(settings.userAgent),
      m_microphone(m_pulse),
      m_sounds(m_pulse, settings.soundsFolder),
      m_autostart(m_folders.userConfiguration(), settings.profile),
      m_platform{.clock = m_clock,
                 .folders = m_folders,
                 .volumes = m_volumes,
                 .defaults = m_defaults,
                 .secrets = m_secrets,
                 .computerName = m_computerName,
                 .workspace = m_workspace,
                 .http = m_http,
                 .trust = m_desktop.trust(),
                 .microphone = m_microphone,
                 .sounds = m_sounds,
                 .keyTaps = m_desktop.keyTaps(),
                 .keyPoster = m_desktop.keyPoster(),
                 .pasteboard = pasteboard(),
                 .localKeys = m_windowKeys,
                 .activation = m_activation,
                 .appearance = m_appearance,
                 .panels = *m_panels,
                 .graphics = m_graphics,
                 .autostart = m_autostart,
                 .background = m_background,
                 .presence = m_presence}
{
}

// GNOME's compositor offers no such clipboard, but shares the one of its X11 server. Without that, too, only
// our windows get at it.
Pasteboard &LinuxMachine::pasteboard()
{
    if (m_waylandPasteboard)
        return *m_waylandPasteboard;
    if (m_desktop.connection().isOpen() || !isOnWayland())
        return m_desktop.pasteboard();
    m_windowPasteboard = std::make_unique<WindowPasteboard>();
    return *m_windowPasteboard;
}
