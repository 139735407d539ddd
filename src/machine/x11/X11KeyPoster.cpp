#include "machine/x11/X11KeyPoster.h"

#include "base/AccessibilityTrust.h"
#include "machine/desktop/KeyPositions.h"
#include "machine/x11/FocusedWindow.h"
#include "machine/x11/X11Connection.h"
#include "machine/x11/X11KeyTaps.h"
#include "machine/x11/X11Keyboard.h"
#include "machine/x11/X11Pasteboard.h"

#include <QCoroTimer>
#include <QDeadlineTimer>
#include <QPointer>

#include <chrono>

#include <xcb/xtest.h>

using namespace std::chrono_literals;

namespace {

// Fingers leave a shortcut within this time; who holds on longer gets the keys taken out of the way.
constexpr auto patience = 400ms;
constexpr auto pollInterval = 10ms;

constexpr KeyChord commandV{.keyCode = 9, .flags = KeyFlags::command};

} // namespace

X11KeyPoster::X11KeyPoster(X11Connection &connection, const X11Keyboard &keyboard,
                           X11PasteboardThread &pasteboard, const X11KeyTaps &taps,
                           const AccessibilityTrust &trust)
    : m_connection(connection),
      m_keyboard(keyboard),
      m_pasteboard(pasteboard),
      m_taps(taps),
      m_trust(trust)
{
}

void X11KeyPoster::prepare()
{
    const FocusedWindow window = FocusedWindow::read(m_connection);
    if (!pasteKeystrokes(window).empty())
        return;
    const xcb_atom_t bus =
        m_connection.atoms()["AT_SPI_BUS"]; // where the accessibility bus tells its address
    m_focus.ask(WindowProperty::read(m_connection, m_connection.root(), bus).bytes, window.pid);
}

QCoro::Task<bool> X11KeyPoster::post(KeyChord chord, std::function<bool()> mayStill)
{
    if (!m_trust.isTrusted())
        co_return false;
    const QPointer self(this);
    const xkb_keysym_t symbol = KeyPositions::symbol(chord.keyCode);
    Keystroke keys = keystroke(m_keyboard.keymap().keyTyping(symbol, m_keyboard.group()), chord.flags);
    const QDeadlineTimer deadline(patience);
    while (!keysInTheWay(keys).isEmpty() && !deadline.hasExpired()) {
        co_await QCoro::sleepFor(pollInterval);
        if (!self)
            co_return false;
    }
    if (chord == commandV) {
        const std::optional<Way> way = wayToPaste();
        if (!way)
            co_return false;
        keys = way->keys;
        if (way->keystroke.pastesPrimary) {
            co_await m_pasteboard.lendToPrimary();
            if (!self)
                co_return false;
        }
    }
    co_return mayStill() && send(keys);
}

auto X11KeyPoster::wayToPaste() -> std::optional<Way>
{
    const FocusedWindow window = FocusedWindow::read(m_connection);
    std::span<const PasteKeystroke> keystrokes = pasteKeystrokes(window);
    if (keystrokes.empty())
        keystrokes = pasteKeystrokes(m_focus.isTerminal(window.pid));
    // Letters without a V leave it to keys that are on every keyboard, before it is the key where V would be:
    // some programs take that for V.
    for (const auto keyFor : {&X11KeyPoster::keyTyping, &X11KeyPoster::keyInPlace}) {
        for (const PasteKeystroke &paste : keystrokes) {
            const xcb_keycode_t key = (this->*keyFor)(paste);
            const bool isShortcut = m_taps.isWatched({KeyPositions::keyCode(key), paste.chord.flags});
            const Keystroke keys = keystroke(key, paste.chord.flags);
            if (!keys.isEmpty() && !isShortcut)
                return Way{paste, keys};
        }
    }
    return std::nullopt;
}

xcb_keycode_t X11KeyPoster::keyTyping(const PasteKeystroke &paste) const
{
    return m_keyboard.keymap().keyTyping(paste.symbol, m_keyboard.group());
}

xcb_keycode_t X11KeyPoster::keyInPlace(const PasteKeystroke &paste) const
{
    return KeyPositions::xKeycode(paste.chord.keyCode);
}

auto X11KeyPoster::keystroke(xcb_keycode_t key, quint64 flags) const -> Keystroke
{
    const ModifierMap &modifiers = m_keyboard.modifiers();
    Keystroke keys;
    if (flags & (KeyFlags::command | KeyFlags::control))
        keys.append(modifiers.keyFor(KeyFlags::control));
    for (const quint64 flag : {KeyFlags::option, KeyFlags::shift, KeyFlags::fn}) {
        if (flags & flag)
            keys.append(modifiers.keyFor(flag));
    }
    keys.append(key);
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
