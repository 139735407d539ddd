#include "desktop/x11/Typist.h"

#include "machine/x11/XkbProtocol.h"

#include <linux/input-event-codes.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

using namespace Qt::StringLiterals;

Typist::Typist() : m_keyboard(m_connection)
{
    QProcess lookUp;
    lookUp.start(u"xinput"_s, {u"list"_s, u"--id-only"_s, u"keyboard:Xvfb keyboard"_s});
    lookUp.waitForFinished();
    m_device = static_cast<uint8_t>(lookUp.readAll().trimmed().toUInt());
    m_firstEvent = xcb_get_extension_data(m_connection.xcb(), &xcb_input_id)->first_event;
}

Typist::~Typist()
{
    const X11Keyboard::Keys down = m_keyboard.keysDown() | m_pressed;
    for (std::size_t key = 8; key < down.size(); ++key) {
        if (down[key])
            release(static_cast<int>(key) - 8);
    }
    if (lockedModifiers() & XCB_MOD_MASK_LOCK)
        tap(KEY_CAPSLOCK);
    if (lockedModifiers() & XCB_MOD_MASK_2)
        tap(KEY_NUMLOCK);
    lockGroup(0);
    setLayout({u"us"_s, u"-option"_s, QString()});
}

uint16_t Typist::lockedModifiers() const
{
    const auto cookie = xcb_xkb_get_state(m_connection.xcb(), XCB_XKB_ID_USE_CORE_KBD);
    const auto reply = adopt(xcb_xkb_get_state_reply(m_connection.xcb(), cookie, nullptr));
    return reply ? reply->lockedMods : 0;
}

void Typist::lockGroup(uint8_t group)
{
    xcb_xkb_latch_lock_state(m_connection.xcb(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, true, group, 0, 0, 0);
    m_keyboard.group(); // the answer comes after the change
}

void Typist::fake(uint8_t event, int evdevKey)
{
    const bool isPress = event == XCB_KEY_PRESS;
    m_pressed[static_cast<std::size_t>(evdevKey) + 8] = isPress;
    const int onDevice = m_firstEvent + (isPress ? XCB_INPUT_DEVICE_KEY_PRESS : XCB_INPUT_DEVICE_KEY_RELEASE);
    xcb_test_fake_input(m_connection.xcb(), static_cast<uint8_t>(onDevice), static_cast<uint8_t>(evdevKey + 8),
                        XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, m_device);
    m_keyboard.group(); // the answer comes after the event
}
