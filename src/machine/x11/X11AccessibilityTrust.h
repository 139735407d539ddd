#pragma once

#include "base/AccessibilityTrust.h"

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
