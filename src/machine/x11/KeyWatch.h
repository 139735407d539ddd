#pragma once

#include "base/KeyTap.h"
#include "machine/x11/X11Connection.h"
#include "machine/x11/X11Keyboard.h"

#include <QList>
#include <QObject>

#include <array>
#include <compare>
#include <set>
#include <vector>
#include <xcb/xproto.h>

class ModifierMap;
class X11Connection;

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

/// Watches chords by grabbing their keys: a matching press comes to us alone. The server waits for no word of
/// ours, so that nobody's typing does.
///
/// From a grabbed press to its release the server would give us every other key as well. So we let go of the
/// key ourselves (XTEST), at once: to the server it is up, does not repeat, and its release, whenever the
/// finger leaves it, is none. We do so on the keyboard that was pressed, since all programs read the mapping
/// anew whenever the keyboard in use is another one than before. What reaches us in that instant all the same
/// is handed on to the focused window.
///
/// Chords follow physical positions. A chord whose keys another program holds is named in the log. When the
/// server goes away the taps fall silent.
class KeyWatch final : public QObject
{
public:
    /// An empty name is the display of the environment.
    explicit KeyWatch(const QByteArray &display);

    /// Serves the tap until it is removed; false when one of these chords was refused.
    bool install(const KeyTap &tap, const QList<KeyChord> &chords, KeyTaps::Handler handler);
    /// Watches exactly these chords for it from now on; false when one of them was refused.
    bool watch(const KeyTap &tap, const QList<KeyChord> &chords);
    void remove(const KeyTap &tap);
    /// Brings the grabs in line with what the taps watch; false when one of these chords was refused.
    bool regrab(const QList<KeyChord> &chords);
    bool isWatched(const KeyChord &chord) const { return m_watched.contains(chord); }

private:
    struct Watched
    {
        const KeyTap *tap;
        KeyTaps::Handler handler;
        QList<KeyChord> chords;
    };

    void judge(const xcb_generic_event_t &event);
    KeyVerdict ask(bool isRest, const KeyEvent &event) const;
    bool isWatched(const KeyEvent &event) const;
    void letGo(xcb_keycode_t key);
    void learnDevice(xcb_keycode_t key);
    void handOn(xcb_key_press_event_t event);

    X11Connection m_connection;
    X11Keyboard m_keyboard;
    KeyGrabs m_grabs;
    std::vector<Watched> m_taps;
    QList<KeyChord> m_watched;
    QList<KeyChord> m_refused;     // already named in the log
    uint8_t m_firstInputEvent = 0; // of the extension that knows more than one keyboard
    uint8_t m_device = 0;          // the keyboard last pressed for us; 0 for the server's own of XTEST
    X11Keyboard::Keys m_taken;     // pressed for us, and no release has come
    std::array<uint32_t, 256> m_letGoAt{}; // by key, the request that told the server
};
