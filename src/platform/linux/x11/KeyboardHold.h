#pragma once

#include "platform/linux/x11/X11Keyboard.h"

class X11Connection;

/// Answers the X server, which holds the keyboard still until we have judged a key, and keeps the keyboard
/// while a key that was swallowed is still down, so that its repeats and its release are swallowed as well.
///
/// Other keys reach the focused window meanwhile: each is played back as if nobody had taken it, which lets
/// go of the keyboard, and the keyboard is taken again at once.
class KeyboardHold
{
public:
    KeyboardHold(X11Connection &connection, const X11Keyboard &keyboard);

    /// Whether the press of this key was swallowed and its release has yet to come.
    bool isSwallowed(xcb_keycode_t key) const { return m_swallowed[key]; }

    void swallowPress(xcb_keycode_t key);
    void swallowRepeat();
    void swallowRelease(xcb_keycode_t key);
    void pass();

    /// Swallows the rest of presses that happened before the keys were watched, of those still down.
    void swallowRest(const X11Keyboard::Keys &keys);

private:
    void take();
    void letGo();
    void allow(uint8_t mode);

    X11Connection &m_connection;
    const X11Keyboard &m_keyboard;
    X11Keyboard::Keys m_swallowed;
    bool m_isHolding = false;
};
