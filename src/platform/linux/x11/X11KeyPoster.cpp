#include "platform/linux/x11/X11KeyPoster.h"

#include "platform/AccessibilityTrust.h"
#include "platform/linux/x11/FocusedWindow.h"
#include "platform/linux/x11/KeyPositions.h"
#include "platform/linux/x11/TerminalPaste.h"
#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/X11Keyboard.h"
#include "platform/linux/x11/X11PasteboardThread.h"

#include <QCoroTimer>
#include <QDeadlineTimer>
#include <QPointer>

#include <chrono>

#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

using namespace std::chrono_literals;

namespace {

// Fingers leave a shortcut within this time; who holds on longer gets the keys taken out of the way.
constexpr auto patience = 400ms;
constexpr auto pollInterval = 10ms;

constexpr KeyChord commandV{.keyCode = 9, .flags = KeyFlags::command};

} // namespace

X11KeyPoster::X11KeyPoster(X11Connection &connection, const X11Keyboard &keyboard,
                           X11PasteboardThread &pasteboard, const AccessibilityTrust &trust)
    : m_connection(connection),
      m_keyboard(keyboard),
      m_pasteboard(pasteboard),
      m_trust(trust)
{
}

QCoro::Task<bool> X11KeyPoster::post(KeyChord chord)
{
    if (!m_trust.isTrusted())
        co_return false;
    const QPointer self(this);
    Keystroke keys = keystroke(KeyPositions::symbol(chord.keyCode), chord.flags);
    const QDeadlineTimer deadline(patience);
    while (!keysInTheWay(keys).isEmpty() && !deadline.hasExpired()) {
        co_await QCoro::sleepFor(pollInterval);
        if (!self)
            co_return false;
    }
    if (chord == commandV) {
        switch (pasteKeystroke(FocusedWindow::read(m_connection))) {
        case PasteKeystroke::controlV:
            break;
        case PasteKeystroke::controlShiftV:
            keys = keystroke(KeyPositions::symbol(chord.keyCode), chord.flags | KeyFlags::shift);
            break;
        case PasteKeystroke::shiftInsert:
            keys = keystroke(XKB_KEY_Insert, KeyFlags::shift);
            co_await m_pasteboard.lendToPrimary();
            if (!self)
                co_return false;
            break;
        }
    }
    co_return send(keys);
}

auto X11KeyPoster::keystroke(xkb_keysym_t symbol, quint64 flags) const -> Keystroke
{
    const ModifierMap &modifiers = m_keyboard.modifiers();
    Keystroke keys;
    if (flags & (KeyFlags::command | KeyFlags::control))
        keys.append(modifiers.keyFor(KeyFlags::control));
    for (const quint64 flag : {KeyFlags::option, KeyFlags::shift, KeyFlags::fn}) {
        if (flags & flag)
            keys.append(modifiers.keyFor(flag));
    }
    keys.append(m_keyboard.keymap().keyTyping(symbol, m_keyboard.group()));
    return keys.contains(0) ? Keystroke() : keys;
}

QList<xcb_keycode_t> X11KeyPoster::keysInTheWay(const Keystroke &keystroke) const
{
    const X11Keyboard::Keys down = m_keyboard.keysDown();
    QList<xcb_keycode_t> keys;
    for (const xcb_keycode_t key : m_keyboard.modifiers().keys() + keystroke) {
        if (down[key] && !keys.contains(key))
            keys.append(key);
    }
    return keys;
}

bool X11KeyPoster::send(const Keystroke &keystroke)
{
    if (keystroke.isEmpty())
        return false;
    // Never pressed again afterwards: the user may let go in between, and a key pressed then would stay down.
    for (const xcb_keycode_t key : keysInTheWay(keystroke))
        fake(XCB_KEY_RELEASE, key);
    for (const xcb_keycode_t key : keystroke)
        fake(XCB_KEY_PRESS, key);
    for (auto key = keystroke.crbegin(); key != keystroke.crend(); ++key)
        fake(XCB_KEY_RELEASE, *key);
    m_connection.flush();
    return m_connection.isOpen();
}

void X11KeyPoster::fake(uint8_t event, xcb_keycode_t key)
{
    xcb_test_fake_input(m_connection.xcb(), event, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}
