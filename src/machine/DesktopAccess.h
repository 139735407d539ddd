#pragma once

#include "base/AccessibilityTrust.h"
#include "base/FloatingPanels.h"
#include "base/KeyTap.h"
#include "machine/gnome/GnomeKeyTaps.h"
#include "machine/plasma/PlasmaKeyTaps.h"
#include "machine/sway/SwayKeyTaps.h"
#include "machine/wayland/WaylandConnection.h"
#include "machine/wayland/WaylandKeyPoster.h"
#include "machine/wayland/WaylandPasteboard.h"
#include "machine/x11/WindowPasteboard.h"
#include "machine/x11/X11Desktop.h"
#include "machine/x11/X11FloatingPanels.h"

#include <memory>

class Appearance;

/// The way to the keys, the clipboard and the space above the windows: the first that this session offers,
/// found by asking for it and not by a desktop's name.
///
/// | | an X11 server of its own | a Wayland compositor |
/// |---|---|---|
/// | the shortcut | a grab; in GNOME one with Ctrl beside the logo key | sway's bindings, KWin's global
/// shortcuts | | typing | XTEST | a virtual keyboard, KWin's fake input | | the clipboard | selections |
/// data-control, else the selections of its X11 server, else our windows' | | the overlay | a window of its
/// own | layer-shell, else notifications |
class DesktopAccess final : public AccessibilityTrust, public FloatingPanels
{
public:
    /// The appearance outlives the panels.
    explicit DesktopAccess(const Appearance &appearance);

    bool isTrusted() const override;
    bool isTrustedPrompting() override { return isTrusted(); }
    bool canType() const override;
    std::unique_ptr<FloatingPanel> create(PanelContent &content) override;

    X11Connection &x11() { return m_x11.connection(); }
    /// Whether Fn is played by Ctrl and the logo key together.
    bool fnTakesControl() const { return m_isGnome; }
    KeyTaps &keyTaps();
    KeyPoster &keyPoster();
    Pasteboard &pasteboard() { return m_pasteboard; }

private:
    Pasteboard &choosePasteboard();

    const Appearance &m_appearance;
    X11Desktop m_x11;
    X11FloatingPanels m_x11Panels{m_x11.connection()};
    std::unique_ptr<WaylandPasteboard::Thread> m_waylandPasteboard;
    std::unique_ptr<WindowPasteboard> m_windowPasteboard; // where there is no other
    Pasteboard &m_pasteboard;
    WaylandConnection m_wayland;
    WaylandKeyPoster m_waylandKeys;
    SwayKeyTaps m_sway;
    PlasmaKeyTaps m_plasma;
    bool m_isGnome = GnomeKeyTaps::isGnome();
    GnomeKeyTaps m_gnome{m_x11.keyTaps()};
};
