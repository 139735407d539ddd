#include "machine/DesktopAccess.h"

#include "machine/desktop/NotificationPanel.h"
#include "machine/wayland/LayerPanel.h"
#include "machine/x11/XwaylandPanel.h"

#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace {

bool isWaylandClient()
{
    return QGuiApplication::platformName().startsWith("wayland"_L1);
}

} // namespace

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
    if (m_x11.connection().isOpen() || !isWaylandClient())
        return m_x11.pasteboard();
    m_windowPasteboard = std::make_unique<WindowPasteboard>();
    return *m_windowPasteboard;
}

std::unique_ptr<FloatingPanel> DesktopAccess::create(PanelContent &content)
{
    if (!m_x11.trust().isTrusted() && LayerPanel::isOffered(m_wayland)) {
        m_overlay = u"layer-shell"_s;
        return std::make_unique<LayerPanel>(content, m_wayland, m_appearance);
    }
    if (isGnomeOnWayland() && XwaylandPanel::isOffered(m_x11.connection())) {
        m_overlay = u"a window by Xwayland"_s;
        return std::make_unique<XwaylandPanel>(content, m_x11.connection(), m_appearance);
    }
    if (isWaylandClient()) {
        m_overlay = u"notifications"_s;
        return std::make_unique<NotificationPanel>();
    }
    m_overlay = u"a window"_s;
    return m_x11Panels.create(content);
}

QList<Checkup> DesktopAccess::checkups() const
{
    const bool isGnome = isGnomeOnWayland();
    const bool isX11 = !isGnome && m_x11.trust().isTrusted();
    const QString keys = isGnome             ? u"GNOME's keyboard settings"_s
                         : isX11             ? u"a grab of the key"_s
                         : m_sway.isOpen()   ? u"sway's bindings"_s
                         : m_plasma.isOpen() ? u"KWin's global shortcuts"_s
                                             : QString();
    const QString typing = isGnome                    ? u"GNOME's remote control"_s
                           : isX11                    ? u"XTEST"_s
                           : m_waylandKeys.isUsable() ? u"a virtual keyboard"_s
                                                      : QString();
    const QString clipboard = m_waylandPasteboard  ? u"data-control"_s
                              : m_windowPasteboard ? u"our own windows"_s
                                                   : u"X11 selections"_s;
    const bool mayAsk = isGnome && !m_gnomeConsent.isGiven();
    const QString allow = u"Allow it: press Open beside the keys under Settings, Permissions."_s;
    return {Checkup::of(
                u"shortcut"_s, keys, isTrusted(),
                mayAsk ? allow
                       : u"This desktop gives no program a shortcut: bind a key to \"sayvane toggle\" in its "
                         "settings."_s),
            Checkup::of(u"paste"_s, typing, canType(),
                        mayAsk ? allow
                               : u"This desktop lets no program type: paste each text yourself, it is on the "
                                 "clipboard."_s),
            Checkup::of(u"clipboard"_s, clipboard, m_pasteboard.isReachable(),
                        u"This desktop gives it only to the window in front: open Sayvane to copy a text."_s),
            Checkup::of(u"overlay"_s, m_overlay, true, {})};
}

QStringList DesktopAccess::takeBack()
{
    QStringList done;
    if (m_gnomeShortcuts.remove())
        done.append(u"The shortcuts in GNOME's keyboard settings are gone."_s);
    if (m_plasma.remove())
        done.append(u"The shortcuts in Plasma's settings are gone."_s);
    if (m_gnomeConsent.forget())
        done.append(u"What was allowed or refused is forgotten: it is asked for again when it is needed."_s);
    return done;
}
