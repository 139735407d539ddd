#include "platform/linux/x11/X11KeyTaps.h"

#include "platform/AccessibilityTrust.h"
#include "platform/linux/x11/KeyPositions.h"
#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/X11KeyTap.h"
#include "platform/linux/x11/X11Keyboard.h"

#include <QLoggingCategory>
#include <QStringList>

#include <algorithm>
#include <array>

Q_LOGGING_CATEGORY(hotkeyLog, "com.sayvane.app.hotkey")

namespace {

/// The chord in the words of this desktop, such as "Super+Shift+space".
QString nameOf(const KeyChord &chord)
{
    QStringList parts;
    if (chord.flags & KeyFlags::fn)
        parts << QStringLiteral("Super");
    if (chord.flags & KeyFlags::command)
        parts << QStringLiteral("AltGr");
    if (chord.flags & KeyFlags::option)
        parts << QStringLiteral("Alt");
    if (chord.flags & KeyFlags::control)
        parts << QStringLiteral("Ctrl");
    if (chord.flags & KeyFlags::shift)
        parts << QStringLiteral("Shift");
    std::array<char, 64> symbol{};
    xkb_keysym_get_name(KeyPositions::symbol(chord.keyCode), symbol.data(), symbol.size());
    parts << QString::fromLatin1(symbol.data());
    return parts.join(u'+');
}

} // namespace

X11KeyTaps::X11KeyTaps(X11Connection &connection, X11Keyboard &keyboard, const AccessibilityTrust &trust)
    : m_connection(connection),
      m_keyboard(keyboard),
      m_trust(trust),
      m_grabs(connection),
      m_hold(connection, keyboard)
{
    connect(&connection, &X11Connection::eventReceived, this, [this](const xcb_generic_event_t *event) {
        // Releases have the same layout. Nobody's imitations count: a grabbed key is never sent.
        if (event->response_type == XCB_KEY_PRESS || event->response_type == XCB_KEY_RELEASE)
            judge(*reinterpret_cast<const xcb_key_press_event_t *>(event));
    });
    connect(&keyboard, &X11Keyboard::changed, this, [this] { regrab({}); });
}

std::unique_ptr<KeyTap> X11KeyTaps::install(std::span<const KeyChord> chords, Handler handler)
{
    if (!m_trust.isTrusted())
        return nullptr;
    auto tap = std::make_unique<X11KeyTap>(*this, chords, std::move(handler));
    m_taps.append(tap.get());
    if (!regrab(tap->chords()))
        return nullptr;
    return tap;
}

bool X11KeyTaps::regrab(const QList<KeyChord> &chords)
{
    QList<KeyChord> wanted;
    for (const X11KeyTap *tap : std::as_const(m_taps))
        wanted.append(tap->chords());
    const QList<KeyChord> refused = m_grabs.hold(wanted, m_keyboard.modifiers());
    if (!m_connection.isOpen())
        return false;
    for (const KeyChord &chord : refused) {
        if (!m_refused.contains(chord))
            qCWarning(hotkeyLog).noquote() << "Another program holds the shortcut" << nameOf(chord);
    }
    m_refused = refused;
    // A key that is down already, as when it was just chosen for a shortcut, has not been pressed for us.
    X11Keyboard::Keys fresh;
    for (const KeyChord &chord : std::as_const(wanted)) {
        const xcb_keycode_t key = KeyPositions::xKeycode(chord.keyCode);
        if (key != 0 && !m_watched.contains(chord) && !refused.contains(chord))
            fresh.set(key);
    }
    m_hold.swallowRest(fresh);
    m_watched = wanted;
    return std::ranges::none_of(chords, [&](const KeyChord &chord) { return refused.contains(chord); });
}

void X11KeyTaps::remove(const X11KeyTap &tap)
{
    m_taps.removeOne(&tap);
    regrab({});
}

void X11KeyTaps::judge(const xcb_key_press_event_t &event)
{
    const bool isPress = event.response_type == XCB_KEY_PRESS;
    const bool isSwallowed = m_hold.isSwallowed(event.detail);
    const KeyVerdict verdict =
        ask(isSwallowed, {
                             .type = isPress ? KeyEventType::keyDown : KeyEventType::keyUp,
                             .keyCode = KeyPositions::keyCode(event.detail),
                             .flags = m_keyboard.modifiers().flags(event.state),
                             .isAutorepeat = isPress && isSwallowed,
                         });
    if (isSwallowed && isPress)
        m_hold.swallowRepeat();
    else if (isSwallowed)
        m_hold.swallowRelease(event.detail);
    else if (isPress && verdict == KeyVerdict::swallow)
        m_hold.swallowPress(event.detail);
    else
        m_hold.pass();
}

KeyVerdict X11KeyTaps::ask(bool isSwallowed, const KeyEvent &event) const
{
    // The rest of a swallowed press is reported whatever the modifiers have become.
    const auto watches = [&](const KeyChord &chord) {
        return chord.keyCode == event.keyCode &&
               (isSwallowed || chord.flags == (event.flags & KeyFlags::compared));
    };
    // By index: a handler may install another tap.
    for (qsizetype i = 0; i < m_taps.size(); ++i) {
        if (std::ranges::any_of(m_taps[i]->chords(), watches) &&
            m_taps[i]->judge(event) == KeyVerdict::swallow)
            return KeyVerdict::swallow;
    }
    return KeyVerdict::pass;
}
