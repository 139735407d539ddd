#pragma once

#include "base/KeyTap.h"

#include <QList>

#include <compare>
#include <set>

#include <xcb/xproto.h>

class X11Connection;
class ModifierMap;

/// The chords that the X server hands to us instead of to the focused window.
///
/// A chord is grabbed once for every combination of locks, since the server compares those too.
class KeyGrabs
{
public:
    explicit KeyGrabs(X11Connection &connection);

    /// Grabs exactly these chords, whatever was grabbed before. Returns those that another program holds;
    /// nothing of them is grabbed. A chord that this keyboard cannot produce is passed over.
    QList<KeyChord> hold(const QList<KeyChord> &chords, const ModifierMap &modifiers);

private:
    struct Grab
    {
        xcb_keycode_t key;
        uint16_t modifiers;
        auto operator<=>(const Grab &) const = default;
    };
    using Grabs = std::set<Grab>;

    static Grabs grabsFor(const KeyChord &chord, const ModifierMap &modifiers);
    bool add(const Grabs &grabs);
    void remove(const Grab &grab);

    X11Connection &m_connection;
    Grabs m_held;
};
