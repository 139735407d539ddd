#pragma once

#include "base/AccessibilityTrust.h"
#include "machine/x11/X11Connection.h"
#include "machine/x11/X11KeyPoster.h"
#include "machine/x11/X11KeyTaps.h"
#include "machine/x11/X11Keyboard.h"
#include "machine/x11/X11Pasteboard.h"

class X11Connection;
class X11Keyboard;

/// Any program may watch and send keys on an X11 server that has the extensions for it. Under Wayland the
/// X11 server is a guest that sees the keys of its own windows only, which does not count. There is nothing
/// to ask the user for.
class X11AccessibilityTrust final : public AccessibilityTrust
{
public:
    X11AccessibilityTrust(const X11Connection &connection, const X11Keyboard &keyboard);

    /// Asks no server: cheap enough for a timer.
    bool isTrusted() const override;
    bool isTrustedPrompting() override { return isTrusted(); }

private:
    const X11Connection &m_connection;
    bool m_isCapable;
};

/// What an X11 session gives: keys, keystrokes and the clipboard. Needs an event loop, not a window.
///
/// Without a server there is no trust, no tap and no keystroke, and the clipboard is a memory of our own.
class X11Desktop
{
public:
    /// An empty name is the display of the environment.
    explicit X11Desktop(const QByteArray &display = {});

    X11Connection &connection() { return m_connection; }
    const X11AccessibilityTrust &trust() const { return m_trust; }
    X11PasteboardThread &pasteboard() { return m_pasteboard; }
    X11KeyTaps &keyTaps() { return m_keyTaps; }
    const X11KeyTaps &keyTaps() const { return m_keyTaps; }
    X11KeyPoster &keyPoster() { return m_keyPoster; }

private:
    X11Connection m_connection;
    X11Keyboard m_keyboard;
    X11AccessibilityTrust m_trust;
    X11PasteboardThread m_pasteboard;
    X11KeyTaps m_keyTaps;
    X11KeyPoster m_keyPoster;
};
