#pragma once

#include "platform/KeyPoster.h"

#include <QList>
#include <QObject>

#include <xcb/xproto.h>
#include <xkbcommon/xkbcommon.h>

class AccessibilityTrust;
class X11Connection;
class X11Keyboard;
class X11PasteboardThread;

/// Types through the server's XTEST extension.
///
/// What Command is elsewhere is Ctrl in the programs of this desktop. Command-V is whatever makes the focused
/// program paste: Ctrl+V, Ctrl+Shift+V in terminals, and in terminals that paste nothing but the PRIMARY
/// selection Shift+Insert, for which the pasteboard lends its contents to PRIMARY.
class X11KeyPoster final : public QObject, public KeyPoster
{
    Q_OBJECT
public:
    X11KeyPoster(X11Connection &connection, const X11Keyboard &keyboard, X11PasteboardThread &pasteboard,
                 const AccessibilityTrust &trust);

    /// A pending call is never resumed when the poster goes away.
    QCoro::Task<bool> post(KeyChord chord) override;

private:
    /// Keys in the order of their presses, the modifiers first; empty when one is missing.
    using Keystroke = QList<xcb_keycode_t>;

    Keystroke keystroke(xkb_keysym_t symbol, quint64 flags) const;
    QList<xcb_keycode_t> keysInTheWay(const Keystroke &keystroke) const;
    bool send(const Keystroke &keystroke);
    void fake(uint8_t event, xcb_keycode_t key);

    X11Connection &m_connection;
    const X11Keyboard &m_keyboard;
    X11PasteboardThread &m_pasteboard;
    const AccessibilityTrust &m_trust;
};
