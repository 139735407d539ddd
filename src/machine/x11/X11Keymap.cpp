#include "machine/x11/X11Keymap.h"

#include "machine/x11/X11Connection.h"

#include <algorithm>
#include <iterator>
#include <span>

#include <xkbcommon/xkbcommon-x11.h>

namespace {

std::span<const xkb_keysym_t> typed(xkb_keymap *keymap, xkb_keycode_t key, xkb_layout_index_t group,
                                    xkb_level_index_t level)
{
    const xkb_keysym_t *symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(keymap, key, group, level, &symbols);
    return {symbols, static_cast<std::size_t>(std::max(count, 0))};
}

std::span<const xkb_keysym_t> unshifted(xkb_keymap *keymap, xkb_keycode_t key, xkb_layout_index_t group)
{
    return typed(keymap, key, group, 0);
}

} // namespace

X11Keymap::X11Keymap() = default;

X11Keymap X11Keymap::read(const X11Connection &connection)
{
    X11Keymap result;
    const int32_t device = xkb_x11_get_core_keyboard_device_id(connection.xcb());
    const std::unique_ptr<xkb_context, Unref> context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    if (device >= 0 && context)
        result.m_keymap.reset(xkb_x11_keymap_new_from_device(context.get(), connection.xcb(), device,
                                                             XKB_KEYMAP_COMPILE_NO_FLAGS));
    return result;
}

QList<xkb_keysym_t> X11Keymap::symbols(xcb_keycode_t key) const
{
    QList<xkb_keysym_t> result;
    if (!m_keymap)
        return result;
    xkb_keymap *keymap = m_keymap.get();
    for (xkb_layout_index_t group = 0; group < xkb_keymap_num_layouts_for_key(keymap, key); ++group)
        std::ranges::copy(unshifted(keymap, key, group), std::back_inserter(result));
    return result;
}

QList<xkb_keysym_t> X11Keymap::allSymbols(xcb_keycode_t key) const
{
    QList<xkb_keysym_t> result;
    if (!m_keymap)
        return result;
    xkb_keymap *keymap = m_keymap.get();
    for (xkb_layout_index_t group = 0; group < xkb_keymap_num_layouts_for_key(keymap, key); ++group) {
        for (xkb_level_index_t level = 0; level < xkb_keymap_num_levels_for_key(keymap, key, group); ++level)
            std::ranges::copy(typed(keymap, key, group, level), std::back_inserter(result));
    }
    return result;
}

xcb_keycode_t X11Keymap::keyTyping(xkb_keysym_t symbol, uint32_t group) const
{
    if (!m_keymap)
        return 0;
    if (const xcb_keycode_t key = keyTypingIn(group, symbol))
        return key;
    // Programs look for their shortcuts in the other groups too when the active one has none of them.
    for (xkb_layout_index_t other = 0; other < xkb_keymap_num_layouts(m_keymap.get()); ++other) {
        if (const xcb_keycode_t key = keyTypingIn(other, symbol))
            return key;
    }
    return 0;
}

xcb_keycode_t X11Keymap::keyTypingIn(xkb_layout_index_t group, xkb_keysym_t symbol) const
{
    xkb_keymap *keymap = m_keymap.get();
    const xkb_keycode_t last = std::min<xkb_keycode_t>(xkb_keymap_max_keycode(keymap), 255);
    for (xkb_keycode_t key = xkb_keymap_min_keycode(keymap); key <= last; ++key) {
        if (std::ranges::count(unshifted(keymap, key, group), symbol) > 0)
            return static_cast<xcb_keycode_t>(key);
    }
    return 0;
}
