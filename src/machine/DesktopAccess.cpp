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

/// A tap that tells when it is gone.
class DesktopAccess::Held final : public KeyTap
{
public:
    Held(DesktopAccess &access, const KeyTaps &way, std::unique_ptr<KeyTap> tap)
        : m_access(access),
          m_tap(std::move(tap))
    {
        access.m_inUse = &way;
    }
    ~Held() override { m_access.m_inUse = nullptr; }
    Q_DISABLE_COPY_MOVE(Held)

    bool watch(std::span<const KeyChord> chords) override { return m_tap->watch(chords); }
    void enable() override { m_tap->enable(); }

private:
    DesktopAccess &m_access;
    std::unique_ptr<KeyTap> m_tap;
};

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
      m_mutter([this] { return lendToPrimary(); }),
      m_portalKeys(m_portal, store),
      m_portalTyping(m_portal, store, [this] { return lendToPrimary(); })
{
    connect(&m_portal, &Portal::found, this, &DesktopAccess::ask);
    connect(&m_portalKeys, &PortalKeyTaps::answered, this, &DesktopAccess::ask);
    if (!isX11())
        m_portal.look();
}

QCoro::Task<> DesktopAccess::lendToPrimary()
{
    if (m_waylandPasteboard)
        m_waylandPasteboard->lendToPrimary();
    else
        co_await m_x11.pasteboard().lendToPrimary();
}

/// What the person has allowed before there was a portal stays in use.
bool DesktopAccess::takesKeysByPortal() const
{
    return !isX11() && !m_sway.isOpen() && !m_hyprland.isOpen() && !m_plasma.isOpen() &&
           m_portalKeys.isOffered() && !(m_isGnome && m_gnomeConsent.isGiven());
}

bool DesktopAccess::typesByPortal() const
{
    return !isX11() && !m_waylandKeys.isUsable() && m_portalTyping.isOffered() &&
           (!m_isGnome || takesKeysByPortal() || !m_mutter.isOffered());
}

const KeyTaps &DesktopAccess::wayToKeys() const
{
    if (takesKeysByPortal())
        return m_isGnome ? static_cast<const KeyTaps &>(m_gnomeByPortal) : m_portalKeys;
    if (isGnomeOnWayland())
        return m_gnomeOnWayland;
    if (isX11())
        return m_isGnome ? static_cast<const KeyTaps &>(m_gnome) : m_x11.keyTaps();
    if (m_sway.isOpen())
        return m_sway;
    if (m_hyprland.isOpen())
        return m_hyprland;
    return m_plasma;
}

KeyPoster &DesktopAccess::wayToType()
{
    if (typesByPortal())
        return m_portalTyping;
    if (isGnomeOnWayland())
        return m_mutter;
    if (!isX11() && m_waylandKeys.isUsable())
        return m_waylandKeys;
    return m_x11.keyPoster();
}

bool DesktopAccess::isTrusted() const
{
    // By another way than before it is taken anew.
    if (m_inUse && m_inUse != &wayToKeys())
        return false;
    if (takesKeysByPortal())
        return m_portalKeys.isOpen();
    if (isGnomeOnWayland())
        return m_gnomeConsent.isGiven() && m_gnomeShortcuts.isOffered();
    return isX11() || m_sway.isOpen() || m_hyprland.isOpen() || m_plasma.isOpen();
}

bool DesktopAccess::isTrustedPrompting()
{
    m_isPrompting = true;
    ask();
    return isTrusted();
}

/// Asks for what needs the person's leave, one thing after the other, once it is known who is to be asked.
void DesktopAccess::ask()
{
    if (!m_isPrompting || isX11() || !m_portal.isKnown())
        return;
    if (takesKeysByPortal()) {
        m_portalKeys.ask();
        if (!m_inUse) // it is told what to ask for
            const_cast<KeyTaps &>(wayToKeys()).install(m_wanted, {});
    } else if (m_isGnome) {
        m_gnomeConsent.ask();
    }
    if (typesByPortal() && (!takesKeysByPortal() || m_portalKeys.isOpen()))
        m_portalTyping.ask();
}

bool DesktopAccess::askAgain()
{
    const bool forKeys = takesKeysByPortal() && !m_portalKeys.isOpen();
    const bool forTyping = typesByPortal() && !m_portalTyping.isAllowed();
    const bool forConsent = isGnomeOnWayland() && !takesKeysByPortal() && !m_gnomeConsent.isGiven();
    if (forKeys)
        m_portalKeys.forget();
    if (forTyping)
        m_portalTyping.forget();
    if (forConsent)
        m_gnomeConsent.askAgain();
    m_isPrompting = true;
    ask();
    return forKeys || forTyping || forConsent;
}

bool DesktopAccess::canType() const
{
    if (typesByPortal())
        return m_portalTyping.isAllowed();
    if (isGnomeOnWayland())
        return m_gnomeConsent.isGiven() && m_mutter.isOffered();
    return isX11() || m_waylandKeys.isUsable();
}

std::unique_ptr<KeyTap> DesktopAccess::install(std::span<const KeyChord> chords, Handler handler)
{
    m_wanted = QList<KeyChord>(chords.begin(), chords.end());
    auto &way = const_cast<KeyTaps &>(wayToKeys());
    auto tap = way.install(chords, std::move(handler));
    return tap ? std::make_unique<Held>(*this, way, std::move(tap)) : nullptr;
}

QString DesktopAccess::holder() const
{
    return wayToKeys().holder();
}

void DesktopAccess::prepare()
{
    wayToType().prepare();
}

QCoro::Task<bool> DesktopAccess::post(KeyChord chord, std::function<bool()> mayStill)
{
    return wayToType().post(chord, std::move(mayStill));
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
    if (!isX11() && LayerPanel::isOffered(m_wayland)) {
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
    const QString keys = takesKeysByPortal()   ? u"the desktop's portal"_s
                         : isGnome             ? u"GNOME's keyboard settings"_s
                         : isX11()             ? u"a grab of the key"_s
                         : m_sway.isOpen()     ? u"sway's bindings"_s
                         : m_hyprland.isOpen() ? u"Hyprland's bindings"_s
                         : m_plasma.isOpen()   ? u"KWin's global shortcuts"_s
                                               : QString();
    const QString typing = typesByPortal()            ? u"the desktop's portal"_s
                           : isGnome                  ? u"GNOME's remote control"_s
                           : isX11()                  ? u"XTEST"_s
                           : m_waylandKeys.isUsable() ? u"a virtual keyboard"_s
                                                      : QString();
    const QString clipboard = m_waylandPasteboard  ? u"data-control"_s
                              : m_windowPasteboard ? u"our own windows"_s
                                                   : u"X11 selections"_s;
    const bool asksForKeys = takesKeysByPortal() || (isGnome && !m_gnomeConsent.isGiven());
    const bool asksToType = typesByPortal() || (isGnome && !m_gnomeConsent.isGiven());
    const QString allow = u"Allow it: press Open beside the keys under Settings, Permissions."_s;
    return {Checkup::of(
                u"shortcut"_s, keys, isTrusted(),
                asksForKeys
                    ? allow
                    : u"This desktop gives no program a shortcut: bind a key to \"sayvane toggle\" in its "
                      "settings."_s),
            Checkup::of(u"paste"_s, typing, canType(),
                        asksToType
                            ? allow
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
    const bool wasAllowed = m_gnomeConsent.forget();
    const bool wereKeys = m_portalKeys.forget();
    if (m_portalTyping.forget() || wereKeys || wasAllowed)
        done.append(u"What was allowed or refused is forgotten: it is asked for again when it is needed."_s);
    return done;
}
