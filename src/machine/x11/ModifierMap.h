#pragma once

#include <QList>
#include <QtGlobal>

#include <array>
#include <memory>
#include <optional>

#include <xcb/xproto.h>
#include <xkbcommon/xkbcommon.h>

class X11Connection;

/// The server's keyboard mapping as it was when read: what each key types, in each group.
class X11Keymap
{
public:
    /// An empty mapping.
    X11Keymap();
    static X11Keymap read(const X11Connection &connection);

    bool isEmpty() const { return !m_keymap; }
    /// What a key types unshifted, in all its groups.
    QList<xkb_keysym_t> symbols(xcb_keycode_t key) const;
    /// What a key types in all its groups, with and without Shift and the like.
    QList<xkb_keysym_t> allSymbols(xcb_keycode_t key) const;
    /// The key that types a symbol unshifted, in this group or else in any other; 0 where there is none.
    xcb_keycode_t keyTyping(xkb_keysym_t symbol, uint32_t group) const;

private:
    struct Unref
    {
        void operator()(xkb_context *context) const { xkb_context_unref(context); }
        void operator()(xkb_keymap *keymap) const { xkb_keymap_unref(keymap); }
    };

    xcb_keycode_t keyTypingIn(xkb_layout_index_t group, xkb_keysym_t symbol) const;

    std::unique_ptr<xkb_keymap, Unref> m_keymap;
};

/// Which of the server's eight modifiers stands for which of ours, and which are mere locks.
///
/// The one place that says what the modifier keys are called here: Fn is the logo key (Super), Command is
/// AltGr, Option is Alt; Control and Shift are what they are. Each of the server's modifiers stands for one
/// of ours at most.
class ModifierMap
{
public:
    /// No modifiers at all.
    ModifierMap();
    static ModifierMap read(const X11Connection &connection, const X11Keymap &keymap);

    /// The modifiers held, as `KeyFlags`, in the state that an event carries. Allocates nothing.
    quint64 flags(uint16_t state) const;
    /// The server's modifiers for a set of `KeyFlags`; none when one of them is not on this keyboard.
    std::optional<uint16_t> mask(quint64 flags) const;
    /// A key that acts as one of our modifiers; 0 when none does.
    xcb_keycode_t keyFor(quint64 flag) const;
    /// Every combination of the locks that may be on: Caps Lock, Num Lock, Scroll Lock.
    const QList<uint16_t> &lockCombinations() const { return m_lockCombinations; }
    /// The keys that act as modifiers while held; the locks are not among them.
    const QList<xcb_keycode_t> &keys() const { return m_keys; }

private:
    std::array<uint16_t, 5> m_masks{};      // in the order of the table
    std::array<xcb_keycode_t, 5> m_keyOf{}; // likewise
    QList<uint16_t> m_lockCombinations{0};
    QList<xcb_keycode_t> m_keys;
};
