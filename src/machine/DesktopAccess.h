#pragma once

#include "base/AccessibilityTrust.h"
#include "base/FloatingPanel.h"
#include "base/KeyTap.h"
#include "machine/gnome/GnomeConsent.h"
#include "machine/gnome/GnomeKeyTaps.h"
#include "machine/gnome/GnomeShortcuts.h"
#include "machine/gnome/MutterKeyPoster.h"
#include "machine/plasma/PlasmaKeyTaps.h"
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
/// found by asking for it and not by a desktop's name.
///
/// | | an X11 server of its own | GNOME on Wayland | another Wayland compositor |
/// |---|---|---|---|
/// | the shortcut | a grab | a shortcut in its settings | sway's bindings, KWin's shortcuts |
/// | typing | XTEST | mutter's remote control | a virtual keyboard, KWin's fake input |
/// | the clipboard | selections | those of its guest X server | data-control, else as GNOME, else our
/// windows' | | the overlay | a window of its own | one of its guest X server | layer-shell, else
/// notifications |
class DesktopAccess final : public AccessibilityTrust, public FloatingPanels
{
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

    X11Connection &x11() { return m_x11.connection(); }
    /// Whether Fn is played by Ctrl and the logo key together.
    bool fnTakesControl() const { return m_isGnome; }
    KeyTaps &keyTaps();
    KeyPoster &keyPoster();
    Pasteboard &pasteboard() { return m_pasteboard; }

private:
    Pasteboard &choosePasteboard();
    bool isGnomeOnWayland() const;

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
    PlasmaKeyTaps m_plasma;
    bool m_isGnome = GnomeKeyTaps::isGnome();
    GnomeKeyTaps m_gnome{m_x11.keyTaps()};
    GnomeConsent m_gnomeConsent;
    GnomeShortcuts m_gnomeShortcuts{m_gnomeConsent};
    GnomeKeyTaps m_gnomeOnWayland{m_gnomeShortcuts};
    MutterKeyPoster m_mutter;
};
