#pragma once

#include "base/KeyPoster.h"
#include "machine/desktop/FocusedObject.h"
#include "machine/desktop/TerminalPaste.h"

#include <QList>
#include <QObject>

#include <optional>

#include <xcb/xproto.h>
#include <xkbcommon/xkbcommon.h>

class AccessibilityTrust;
class X11Connection;
class X11KeyTaps;
class X11Keyboard;
class X11PasteboardThread;

/// Types through the server's XTEST extension.
///
/// What Command is elsewhere is Ctrl in the programs of this desktop. Command-V is whatever makes the focused
/// program paste: Ctrl+V, Ctrl+Shift+V in terminals, and in terminals that paste nothing but the PRIMARY
/// selection Shift+Insert, for which the pasteboard lends its contents to PRIMARY. A keystroke that is itself
/// the shortcut would come back to us: then it is another one that the program understands.
///
/// A terminal inside another program is known by what it tells screen readers, where those are served.
class X11KeyPoster final : public QObject, public KeyPoster
{
    Q_OBJECT
public:
    X11KeyPoster(X11Connection &connection, const X11Keyboard &keyboard, X11PasteboardThread &pasteboard,
                 const X11KeyTaps &taps, const AccessibilityTrust &trust);

    void prepare() override;

    /// A pending call is never resumed when the poster goes away.
    QCoro::Task<bool> post(KeyChord chord, std::function<bool()> mayStill) override;

private:
    /// Keys in the order of their presses, the modifiers first; empty when one is missing.
    using Keystroke = QList<xcb_keycode_t>;

    struct Way
    {
        PasteKeystroke keystroke;
        Keystroke keys;
    };

    /// None where each way is the user's own shortcut.
    std::optional<Way> wayToPaste();
    xcb_keycode_t keyTyping(const PasteKeystroke &paste) const;
    xcb_keycode_t keyInPlace(const PasteKeystroke &paste) const;
    Keystroke keystroke(xcb_keycode_t key, quint64 flags) const;
    QList<xcb_keycode_t> keysInTheWay(const Keystroke &keystroke) const;
    bool send(const Keystroke &keystroke);
    void fake(uint8_t event, xcb_keycode_t key);

    X11Connection &m_connection;
    const X11Keyboard &m_keyboard;
    X11PasteboardThread &m_pasteboard;
    const X11KeyTaps &m_taps;
    const AccessibilityTrust &m_trust;
    FocusedObject m_focus;
};
