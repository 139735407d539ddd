#pragma once

#include "base/AccessibilityTrust.h"
#include "base/FloatingPanel.h"
#include "base/KeyPoster.h"
#include "machine/gnome/GnomeConsent.h"
#include "machine/gnome/GnomeKeyTaps.h"
#include "machine/gnome/GnomeShortcuts.h"
#include "machine/gnome/MutterKeyPoster.h"
#include "machine/hyprland/HyprlandKeyTaps.h"
#include "machine/plasma/PlasmaKeyTaps.h"
#include "machine/portal/Portal.h"
#include "machine/portal/PortalKeyPoster.h"
#include "machine/portal/PortalKeyTaps.h"
#include "machine/sway/SwayKeyTaps.h"
#include "machine/wayland/WaylandConnection.h"
#include "machine/wayland/WaylandKeyPoster.h"
#include "machine/wayland/WaylandPasteboard.h"
#include "machine/x11/WindowPasteboard.h"
#include "machine/x11/X11Desktop.h"
#include "machine/x11/X11FloatingPanel.h"

#include <memory>

class Appearance;
class DefaultsStore;

/// The way to the keys, the clipboard and the space above the windows: the first that this session offers,
/// found by asking for it and not by a desktop's name. What comes and goes is asked anew: the shortcut
/// changes over when there is another way to it.
///
/// | | an X11 server of its own | GNOME on Wayland | another Wayland compositor |
/// |---|---|---|---|
/// | the shortcut | a grab | the portal, else a shortcut in its settings | sway's and Hyprland's bindings,
/// KWin's shortcuts, else the portal | | typing | XTEST | the portal, else mutter's remote control | a
/// virtual keyboard, KWin's fake input, else the portal | | the clipboard | selections | those of its guest X
/// server | data-control, else as GNOME, else our windows' | | the overlay | a window of its own | one of its
/// guest X server | layer-shell, else notifications |
class DesktopAccess final : public QObject,
                            public AccessibilityTrust,
                            public FloatingPanels,
                            public KeyTaps,
                            public KeyPoster
{
    Q_OBJECT
public:
    /// What the user has allowed is kept in the store. The appearance outlives the panels.
    DesktopAccess(DefaultsStore &store, const Appearance &appearance);

    bool isTrusted() const override;
    bool isTrustedPrompting() override;
    bool askAgain() override;
    bool canType() const override;
    QList<Checkup> checkups() const override;
    QStringList takeBack() override;
    std::unique_ptr<FloatingPanel> create(PanelContent &content) override;
    std::unique_ptr<KeyTap> install(std::span<const KeyChord> chords, Handler handler) override;
    QString holder() const override;
    void follow(std::weak_ptr<const Listener> listener) override { m_plasma.follow(std::move(listener)); }
    void prepare() override;
    QCoro::Task<bool> post(KeyChord chord, std::function<bool()> mayStill) override;

    X11Connection &x11() { return m_x11.connection(); }
    /// Whether Fn is played by Ctrl and the logo key together.
    bool fnTakesControl() const { return m_isGnome; }
    Pasteboard &pasteboard() { return m_pasteboard; }

private:
    class Held;

    Pasteboard &choosePasteboard();
    QCoro::Task<> lendToPrimary();
    bool isX11() const { return m_x11.trust().isTrusted(); }
    bool isGnomeOnWayland() const { return m_isGnome && !isX11(); }
    bool takesKeysByPortal() const;
    bool typesByPortal() const;
    const KeyTaps &wayToKeys() const;
    KeyPoster &wayToType();
    void ask();

    const Appearance &m_appearance;
    X11Desktop m_x11;
    X11FloatingPanels m_x11Panels{m_x11.connection()};
    std::unique_ptr<WaylandPasteboard::Thread> m_waylandPasteboard;
    std::unique_ptr<WindowPasteboard> m_windowPasteboard; // where there is no other
    Pasteboard &m_pasteboard;
    QString m_overlay; // how it is shown, in words
    WaylandConnection m_wayland;
    WaylandKeyPoster m_waylandKeys;
    SwayKeyTaps m_sway;
    HyprlandKeyTaps m_hyprland{m_wayland};
    PlasmaKeyTaps m_plasma;
    bool m_isGnome = GnomeKeyTaps::isGnome();
    GnomeKeyTaps m_gnome{m_x11.keyTaps()};
    GnomeConsent m_gnomeConsent;
    GnomeShortcuts m_gnomeShortcuts{m_gnomeConsent};
    GnomeKeyTaps m_gnomeOnWayland{m_gnomeShortcuts};
    MutterKeyPoster m_mutter;
    Portal m_portal{QString::fromLatin1("app.sayvane.Sayvane")};
    PortalKeyTaps m_portalKeys;
    GnomeKeyTaps m_gnomeByPortal{m_portalKeys};
    PortalKeyPoster m_portalTyping;
    bool m_isPrompting = false;
    QList<KeyChord> m_wanted;         // what was to be installed last
    const KeyTaps *m_inUse = nullptr; // the way by which the shortcut came
};
