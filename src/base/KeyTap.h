#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <span>

/// The bits of a held modifier, the same in keyboard events and in stored shortcuts.
namespace KeyFlags {
inline constexpr quint64 shift = 0x20000;
inline constexpr quint64 control = 0x40000;
inline constexpr quint64 option = 0x80000;
inline constexpr quint64 command = 0x100000;
inline constexpr quint64 fn = 0x800000;
/// The five modifiers that a shortcut is compared on.
inline constexpr quint64 compared = fn | command | option | control | shift;
} // namespace KeyFlags

/// What a tap reports.
enum class KeyEventType : quint32 {
    keyDown = 10,
    keyUp = 11,
    tapDisabledByTimeout = 0xFFFFFFFE,
    tapDisabledByUserInput = 0xFFFFFFFF,
};

/// One press or release, by physical position.
struct KeyEvent
{
    KeyEventType type = KeyEventType::keyDown;
    qint64 keyCode = 0; ///< virtual key code of the ANSI layout
    quint64 flags = 0;  ///< the modifiers held, as `KeyFlags`; other bits are of no account
    bool isAutorepeat = false;
};

/// What the handler makes of an event.
enum class KeyVerdict { pass, swallow };

/// A key with the exact modifiers held.
struct KeyChord
{
    qint64 keyCode = 0;
    quint64 flags = 0;
    bool operator==(const KeyChord &) const = default;
};

/// An installed watch on the keys of the whole session; destroying it removes the watch.
///
/// A press that was swallowed takes its repeats and its release with it.
class KeyTap
{
public:
    virtual ~KeyTap() = default;

    /// Watches exactly these chords from now on; all other keys are left alone at no cost. False when
    /// another program holds one of them; the others are watched all the same.
    virtual bool watch(std::span<const KeyChord> chords) = 0;

    /// Takes the tap into use again after the system switched it off.
    virtual void enable() = 0;
};

/// Where taps are installed.
class KeyTaps
{
public:
    /// Judges one event of a watched chord, on a thread of the taps' own, so that no key waits for the main
    /// thread. It must return quickly and must not destroy its tap; once that is destroyed it is not called
    /// again.
    using Handler = std::function<KeyVerdict(const KeyEvent &)>;

    virtual ~KeyTaps() = default;

    /// Installs a tap that watches the chords; none when the session does not allow it or another
    /// program holds one of them.
    virtual std::unique_ptr<KeyTap> install(std::span<const KeyChord> chords, Handler handler) = 0;

    /// Who held a chord when a tap could last not be installed, as the desktop's settings call it; empty
    /// where nobody did, or it cannot be known.
    virtual QString holder() const { return {}; }

    /// Told, on the main thread and for as long as it lives, when the user gives the shortcut other keys in
    /// the desktop's own settings.
    using Listener = std::function<void(const KeyChord &)>;
    virtual void follow(std::weak_ptr<const Listener> /*listener*/) {}
};
