#include "machine/x11/ModifierMap.h"

#include "base/KeyTap.h"
#include "machine/x11/X11Connection.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <span>

#include <xkbcommon/xkbcommon-keysyms.h>
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

struct Modifier
{
    quint64 flag;
    std::array<xkb_keysym_t, 4> symbols;
};

constexpr std::array<Modifier, 5> modifiers{{
    {KeyFlags::fn, {XKB_KEY_Super_L, XKB_KEY_Super_R}},
    {KeyFlags::command, {XKB_KEY_ISO_Level3_Shift, XKB_KEY_Mode_switch}},
    {KeyFlags::option, {XKB_KEY_Alt_L, XKB_KEY_Alt_R, XKB_KEY_Meta_L, XKB_KEY_Meta_R}},
    {KeyFlags::control, {XKB_KEY_Control_L, XKB_KEY_Control_R}},
    {KeyFlags::shift, {XKB_KEY_Shift_L, XKB_KEY_Shift_R}},
}};

constexpr std::array<xkb_keysym_t, 4> lockSymbols{XKB_KEY_Caps_Lock, XKB_KEY_Shift_Lock, XKB_KEY_Num_Lock,
                                                  XKB_KEY_Scroll_Lock};

bool containsAny(const QList<xkb_keysym_t> &typed, std::span<const xkb_keysym_t> wanted)
{
    return std::ranges::any_of(
        wanted, [&](xkb_keysym_t symbol) { return symbol != XKB_KEY_NoSymbol && typed.contains(symbol); });
}

using Keys = std::array<std::array<xcb_keycode_t, modifiers.size()>, 8>;

/// Which of the table's modifiers a server's modifier stands for, where its keys bear the names of several,
/// as when the logo keys type Meta: first the one that would be nowhere else, and in doubt the upper one.
std::array<std::optional<std::size_t>, 8> meanings(const Keys &keyOf)
{
    std::array<std::optional<std::size_t>, 8> meaning;
    std::array<bool, modifiers.size()> isPlaced{};
    // The plain ones come first: what they mean is certain.
    for (std::size_t names = 1; names <= modifiers.size(); ++names) {
        for (std::size_t bit = 0; bit < keyOf.size(); ++bit) {
            if (static_cast<std::size_t>(std::ranges::count_if(keyOf[bit], std::identity())) != names)
                continue;
            for (std::size_t m = 0; m < modifiers.size(); ++m) {
                if (keyOf[bit][m] != 0 && (!meaning[bit] || (isPlaced[*meaning[bit]] && !isPlaced[m])))
                    meaning[bit] = m;
            }
            isPlaced[*meaning[bit]] = true;
        }
    }
    return meaning;
}

QList<uint16_t> combinations(uint16_t locks)
{
    QList<uint16_t> result;
    for (unsigned subset = locks; subset > 0; subset = (subset - 1) & locks)
        result.append(static_cast<uint16_t>(subset));
    result.append(0);
    return result;
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

ModifierMap::ModifierMap() = default;

ModifierMap ModifierMap::read(const X11Connection &connection, const X11Keymap &keymap)
{
    ModifierMap map;
    const auto cookie = xcb_get_modifier_mapping(connection.xcb());
    const auto reply = adopt(xcb_get_modifier_mapping_reply(connection.xcb(), cookie, nullptr));
    if (!reply)
        return map;
    const std::span keys(xcb_get_modifier_mapping_keycodes(reply.get()),
                         static_cast<std::size_t>(xcb_get_modifier_mapping_keycodes_length(reply.get())));
    uint16_t locks = XCB_MOD_MASK_LOCK;
    Keys keyOf{};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (keys[i] == 0)
            continue;
        const std::size_t place = i / reply->keycodes_per_modifier;
        const auto bit = static_cast<uint16_t>(1U << place);
        if (bit == XCB_MOD_MASK_LOCK || containsAny(keymap.symbols(keys[i]), lockSymbols)) {
            locks |= bit;
            continue;
        }
        map.m_keys.append(keys[i]);
        // A key that no keyboard has may bear the name, on its second level only: Super, where logo keys type
        // Meta.
        const QList<xkb_keysym_t> symbols = keymap.allSymbols(keys[i]);
        for (std::size_t m = 0; m < modifiers.size(); ++m) {
            if (keyOf[place][m] == 0 && containsAny(symbols, modifiers[m].symbols))
                keyOf[place][m] = keys[i];
        }
    }
    const auto meaning = meanings(keyOf);
    for (std::size_t place = 0; place < meaning.size(); ++place) {
        if (!meaning[place])
            continue;
        const auto bit = static_cast<uint16_t>(1U << place);
        map.m_masks[*meaning[place]] |= bit;
        locks &= static_cast<uint16_t>(~bit);
        if (xcb_keycode_t &key = map.m_keyOf[*meaning[place]]; key == 0)
            key = keyOf[place][*meaning[place]];
    }
    map.m_lockCombinations = combinations(locks);
    return map;
}

quint64 ModifierMap::flags(uint16_t state) const
{
    quint64 flags = 0;
    for (std::size_t m = 0; m < modifiers.size(); ++m) {
        if (state & m_masks[m])
            flags |= modifiers[m].flag;
    }
    return flags;
}

std::optional<uint16_t> ModifierMap::mask(quint64 flags) const
{
    uint16_t mask = 0;
    for (std::size_t m = 0; m < modifiers.size(); ++m) {
        if (!(flags & modifiers[m].flag))
            continue;
        if (m_masks[m] == 0)
            return std::nullopt;
        mask |= m_masks[m] & -m_masks[m]; // a key sets one of them, even where several would do
    }
    return mask;
}

xcb_keycode_t ModifierMap::keyFor(quint64 flag) const
{
    const auto it = std::ranges::find(modifiers, flag, &Modifier::flag);
    return it == modifiers.end() ? xcb_keycode_t(0)
                                 : m_keyOf[static_cast<std::size_t>(it - modifiers.begin())];
}
