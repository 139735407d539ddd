#include "machine/DesktopAccess.h"

#include "machine/desktop/NotificationPanel.h"
#include "machine/wayland/LayerPanel.h"
#include "machine/x11/XwaylandPanel.h"

#include <QGuiApplication>

DesktopAccess::DesktopAccess(DefaultsStore &store, const Appearance &appearance)
    : m_appearance(appearance),
      m_waylandPasteboard(WaylandPasteboard::inThread()),
      m_pasteboard(choosePasteboard()),
      m_waylandKeys(
          m_wayland,
          [this] {
              if (m_waylandPasteboard)
                  m_waylandPasteboard->lendToPrimary();
          },
          [this] { return m_plasma.restless(); }),
      m_gnomeConsent(store),
      m_mutter([this] { return m_x11.pasteboard().lendToPrimary(); })
{
}

bool DesktopAccess::isGnomeOnWayland() const
{
    return m_isGnome && !m_x11.trust().isTrusted();
}

bool DesktopAccess::isTrusted() const
{
    if (isGnomeOnWayland())
        return m_gnomeConsent.isGiven() && m_gnomeShortcuts.isOffered();
    return m_x11.trust().isTrusted() || m_sway.isOpen() || m_plasma.isOpen();
}

bool DesktopAccess::isTrustedPrompting()
{
    if (isGnomeOnWayland())
        m_gnomeConsent.ask();
    return isTrusted();
}

bool DesktopAccess::askAgain()
{
    if (!isGnomeOnWayland() || m_gnomeConsent.isGiven())
        return false;
    m_gnomeConsent.askAgain();
    return true;
}

bool DesktopAccess::canType() const
{
    if (isGnomeOnWayland())
        return m_gnomeConsent.isGiven() && m_mutter.isOffered();
    return m_x11.trust().isTrusted() || m_waylandKeys.isUsable();
}

KeyTaps &DesktopAccess::keyTaps()
{
    if (isGnomeOnWayland())
        return m_gnomeOnWayland;
    if (m_x11.trust().isTrusted() && m_isGnome)
        return m_gnome;
    if (m_x11.trust().isTrusted())
        return m_x11.keyTaps();
    if (m_sway.isOpen())
        return m_sway;
    return m_plasma;
}

KeyPoster &DesktopAccess::keyPoster()
{
    if (isGnomeOnWayland())
        return m_mutter;
    if (!m_x11.trust().isTrusted() && m_waylandKeys.isUsable())
        return m_waylandKeys;
    return m_x11.keyPoster();
}

// GNOME's compositor offers no such clipboard, but shares the one of its X11 server. Without that, too, only
// our windows get at it.
Pasteboard &DesktopAccess::choosePasteboard()
{
    if (m_waylandPasteboard)
        return *m_waylandPasteboard;
    if (m_x11.connection().isOpen() || !QGuiApplication::platformName().startsWith(u"wayland"))
        return m_x11.pasteboard();
    m_windowPasteboard = std::make_unique<WindowPasteboard>();
    return *m_windowPasteboard;
}

std::unique_ptr<FloatingPanel> DesktopAccess::create(PanelContent &content)
{
    if (!m_x11.trust().isTrusted() && LayerPanel::isOffered(m_wayland))
        return std::make_unique<LayerPanel>(content, m_wayland, m_appearance);
    if (isGnomeOnWayland() && XwaylandPanel::isOffered(m_x11.connection()))
        return std::make_unique<XwaylandPanel>(content, m_x11.connection(), m_appearance);
    if (QGuiApplication::platformName().startsWith(u"wayland"))
        return std::make_unique<NotificationPanel>();
    return m_x11Panels.create(content);
}
