#pragma once

#include <QList>

#include <memory>

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
