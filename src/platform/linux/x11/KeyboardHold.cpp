#include "platform/linux/x11/KeyboardHold.h"

#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/XcbReply.h"

KeyboardHold::KeyboardHold(X11Connection &connection, const X11Keyboard &keyboard)
    : m_connection(connection),
      m_keyboard(keyboard)
{
}

void KeyboardHold::swallowPress(xcb_keycode_t key)
{
    m_swallowed.set(key);
    if (m_isHolding)
        allow(XCB_ALLOW_SYNC_KEYBOARD);
    else
        take();
}

void KeyboardHold::swallowRepeat()
{
    allow(XCB_ALLOW_SYNC_KEYBOARD);
}

void KeyboardHold::swallowRelease(xcb_keycode_t key)
{
    m_swallowed.reset(key);
    if (m_swallowed.any())
        allow(XCB_ALLOW_SYNC_KEYBOARD);
    else
        letGo();
}

void KeyboardHold::pass()
{
    m_isHolding = false;
    allow(XCB_ALLOW_REPLAY_KEYBOARD);
    if (m_swallowed.any())
        take();
}

void KeyboardHold::swallowRest(const X11Keyboard::Keys &keys)
{
    const X11Keyboard::Keys fresh = keys & ~m_swallowed;
    if (fresh.none())
        return;
    const X11Keyboard::Keys held = fresh & m_keyboard.keysDown();
    for (size_t key = 0; key < held.size(); ++key) {
        if (held[key])
            swallowPress(static_cast<xcb_keycode_t>(key));
    }
}

void KeyboardHold::take()
{
    xcb_connection_t *xcb = m_connection.xcb();
    const auto cookie = xcb_grab_keyboard(xcb, false, m_connection.root(), XCB_CURRENT_TIME,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_SYNC);
    // The keyboard stands still now: a swallowed key that is up went up before we had the keyboard again.
    m_swallowed &= m_keyboard.keysDown();
    const auto reply = adopt(xcb_grab_keyboard_reply(xcb, cookie, nullptr));
    m_isHolding = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    if (!m_isHolding)
        m_swallowed.reset();
    // While nobody had the keyboard a watched chord may have come again: it waits for its own verdict.
    const bool isJudgementDue = m_connection.hasPending([](const xcb_generic_event_t &event) {
        return event.response_type == XCB_KEY_PRESS || event.response_type == XCB_KEY_RELEASE;
    });
    if (isJudgementDue)
        return;
    if (m_swallowed.any())
        allow(XCB_ALLOW_SYNC_KEYBOARD);
    else
        letGo();
}

void KeyboardHold::letGo()
{
    // Without a word about the held event first: keys typed since then belong to the window.
    xcb_ungrab_keyboard(m_connection.xcb(), XCB_CURRENT_TIME);
    m_connection.flush();
    m_isHolding = false;
}

void KeyboardHold::allow(uint8_t mode)
{
    xcb_allow_events(m_connection.xcb(), mode, XCB_CURRENT_TIME);
    m_connection.flush();
}
