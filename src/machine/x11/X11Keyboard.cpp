#include "machine/x11/X11Keyboard.h"

#include "machine/x11/X11Connection.h"
#include "machine/x11/XkbProtocol.h"

#include <chrono>
#include <span>

#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-x11.h>

using namespace std::chrono_literals;

X11Keyboard::X11Keyboard(X11Connection &connection) : m_connection(connection)
{
    if (!xkb_x11_setup_xkb_extension(connection.xcb(), XKB_X11_MIN_MAJOR_XKB_VERSION,
                                     XKB_X11_MIN_MINOR_XKB_VERSION, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
                                     nullptr, nullptr, &m_firstXkbEvent, nullptr))
        return;
    askForRepeatsWithoutReleases();
    askForChanges();
    read();
    // One change of layout is announced in a dozen events.
    m_settling.setSingleShot(true);
    m_settling.setInterval(20ms);
    connect(&m_settling, &QTimer::timeout, this, [this] {
        read();
        Q_EMIT changed();
    });
    connect(&connection, &X11Connection::eventReceived, this,
            [this](const xcb_generic_event_t *event) { handle(*event); });
}

uint32_t X11Keyboard::group() const
{
    const auto cookie = xcb_xkb_get_state(m_connection.xcb(), XCB_XKB_ID_USE_CORE_KBD);
    const auto reply = adopt(xcb_xkb_get_state_reply(m_connection.xcb(), cookie, nullptr));
    return reply ? reply->group : 0;
}

X11Keyboard::Keys X11Keyboard::keysDown() const
{
    Keys keys;
    const auto cookie = xcb_query_keymap(m_connection.xcb());
    const auto reply = adopt(xcb_query_keymap_reply(m_connection.xcb(), cookie, nullptr));
    for (std::size_t key = 0; reply && key < keys.size(); ++key)
        keys[key] = (reply->keys[key / 8] >> (key % 8)) & 1;
    return keys;
}

uint8_t X11Keyboard::deviceHolding(xcb_keycode_t key) const
{
    xcb_connection_t *xcb = m_connection.xcb();
    const auto list =
        adopt(xcb_input_list_input_devices_reply(xcb, xcb_input_list_input_devices(xcb), nullptr));
    if (!list)
        return 0;
    const std::span devices(xcb_input_list_input_devices_devices(list.get()),
                            static_cast<std::size_t>(list->devices_len));
    for (const xcb_input_device_info_t &device : devices) {
        if (device.device_use != XCB_INPUT_DEVICE_USE_IS_X_EXTENSION_KEYBOARD)
            continue;
        const auto state = adopt(xcb_input_query_device_state_reply(
            xcb, xcb_input_query_device_state(xcb, device.device_id), nullptr));
        if (!state)
            continue;
        for (auto it = xcb_input_query_device_state_classes_iterator(state.get()); it.rem > 0;
             xcb_input_input_state_next(&it)) {
            const auto &keys = reinterpret_cast<const xcb_input_key_state_t &>(*it.data);
            if (it.data->class_id == XCB_INPUT_INPUT_CLASS_KEY && (keys.keys[key / 8] >> (key % 8)) & 1)
                return device.device_id;
        }
    }
    return 0;
}

void X11Keyboard::handle(const xcb_generic_event_t &event)
{
    const uint8_t type = event.response_type & 0x7f;
    // Of the keyboard extension's events only the two that were asked for arrive.
    if (type == XCB_MAPPING_NOTIFY || type == m_firstXkbEvent)
        m_settling.start();
}

void X11Keyboard::read()
{
    X11Keymap keymap = X11Keymap::read(m_connection);
    if (keymap.isEmpty())
        return;
    m_keymap = std::move(keymap);
    m_modifiers = ModifierMap::read(m_connection, m_keymap);
}

void X11Keyboard::askForRepeatsWithoutReleases() const
{
    constexpr uint32_t flag = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    xcb_connection_t *xcb = m_connection.xcb();
    const auto cookie = xcb_xkb_per_client_flags(xcb, XCB_XKB_ID_USE_CORE_KBD, flag, flag, 0, 0, 0);
    adopt(xcb_xkb_per_client_flags_reply(xcb, cookie, nullptr));
}

void X11Keyboard::askForChanges() const
{
    constexpr uint16_t events = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr uint16_t mapParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                                  XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MODS |
                                  XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    xcb_xkb_select_events(m_connection.xcb(), XCB_XKB_ID_USE_CORE_KBD, events, 0, events, mapParts, mapParts,
                          nullptr);
}
