#pragma once

#include "platform/KeyTap.h"
#include "platform/linux/x11/KeyGrabs.h"
#include "platform/linux/x11/KeyboardHold.h"

#include <QList>
#include <QObject>

#include <xcb/xproto.h>

class AccessibilityTrust;
class X11Connection;
class X11Keyboard;
class X11KeyTap;

/// Watches chords by grabbing their keys: a matching press, its repeats and its release come to the handler
/// first, and the X server holds the keyboard still until the handler has decided.
///
/// Chords follow physical positions. A chord whose keys another program holds is named in the log. When the
/// server goes away the taps fall silent.
class X11KeyTaps final : public QObject, public KeyTaps
{
public:
    X11KeyTaps(X11Connection &connection, X11Keyboard &keyboard, const AccessibilityTrust &trust);

    std::unique_ptr<KeyTap> install(std::span<const KeyChord> chords, Handler handler) override;

    /// Brings the grabs in line with what the taps watch. False when one of these chords was refused.
    bool regrab(const QList<KeyChord> &chords);
    void remove(const X11KeyTap &tap);

private:
    void judge(const xcb_key_press_event_t &event);
    KeyVerdict ask(bool isSwallowed, const KeyEvent &event) const;

    X11Connection &m_connection;
    X11Keyboard &m_keyboard;
    const AccessibilityTrust &m_trust;
    KeyGrabs m_grabs;
    KeyboardHold m_hold;
    QList<const X11KeyTap *> m_taps;
    QList<KeyChord> m_watched;
    QList<KeyChord> m_refused; // already named in the log
};
