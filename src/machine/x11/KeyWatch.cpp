#include "machine/x11/KeyWatch.h"

#include "machine/desktop/KeyPositions.h"
#include "machine/x11/ModifierMap.h"
#include "machine/x11/X11Connection.h"

#include <QLoggingCategory>
#include <QStringList>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <vector>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

KeyGrabs::KeyGrabs(X11Connection &connection) : m_connection(connection)
{
}

QList<KeyChord> KeyGrabs::hold(const QList<KeyChord> &chords, const ModifierMap &modifiers)
{
    Grabs wanted;
    for (const KeyChord &chord : chords)
        wanted.merge(grabsFor(chord, modifiers));
    std::erase_if(m_held, [&](const Grab &grab) {
        const bool isStale = !wanted.contains(grab);
        if (isStale)
            remove(grab);
        return isStale;
    });
    QList<KeyChord> refused;
    for (const KeyChord &chord : chords) {
        if (!add(grabsFor(chord, modifiers)))
            refused.append(chord);
    }
    m_connection.flush();
    return refused;
}

KeyGrabs::Grabs KeyGrabs::grabsFor(const KeyChord &chord, const ModifierMap &modifiers)
{
    Grabs grabs;
    const xcb_keycode_t key = KeyPositions::xKeycode(chord.keyCode);
    const std::optional<uint16_t> mask = modifiers.mask(chord.flags);
    if (key == 0 || !mask)
        return grabs;
    for (const uint16_t locks : modifiers.lockCombinations())
        grabs.insert({key, static_cast<uint16_t>(*mask | locks)});
    return grabs;
}

bool KeyGrabs::add(const Grabs &grabs)
{
    xcb_connection_t *xcb = m_connection.xcb();
    std::vector<std::pair<Grab, xcb_void_cookie_t>> asked;
    for (const Grab &grab : grabs) {
        if (!m_held.contains(grab))
            asked.emplace_back(grab,
                               xcb_grab_key_checked(xcb, false, m_connection.root(), grab.modifiers, grab.key,
                                                    XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    bool isRefused = !m_connection.isOpen();
    std::vector<Grab> granted;
    for (const auto &[grab, cookie] : asked) {
        if (adopt(xcb_request_check(xcb, cookie)))
            isRefused = true;
        else
            granted.push_back(grab);
    }
    for (const Grab &grab : granted) {
        if (isRefused)
            remove(grab);
        else
            m_held.insert(grab);
    }
    return !isRefused;
}

void KeyGrabs::remove(const Grab &grab)
{
    xcb_ungrab_key(m_connection.xcb(), grab.key, m_connection.root(), grab.modifiers);
}

Q_LOGGING_CATEGORY(hotkeyLog, "com.sayvane.app.hotkey")

namespace {

// A key handed on later than this might meet another window than the one it was typed into.
constexpr auto handOnLimit = 100ms;

/// The chord in the words of this desktop, such as "Super+Shift+space".
QString nameOf(const KeyChord &chord)
{
    QStringList parts;
    if (chord.flags & KeyFlags::fn)
        parts << u"Super"_s;
    if (chord.flags & KeyFlags::command)
        parts << u"AltGr"_s;
    if (chord.flags & KeyFlags::option)
        parts << u"Alt"_s;
    if (chord.flags & KeyFlags::control)
        parts << u"Ctrl"_s;
    if (chord.flags & KeyFlags::shift)
        parts << u"Shift"_s;
    std::array<char, 64> symbol{};
    xkb_keysym_get_name(KeyPositions::symbol(chord.keyCode), symbol.data(), symbol.size());
    parts << QString::fromLatin1(symbol.data());
    return parts.join(u'+');
}

bool watches(const QList<KeyChord> &chords, const KeyEvent &event)
{
    return chords.contains(KeyChord{event.keyCode, event.flags & KeyFlags::compared});
}

/// Servers on this machine count their milliseconds on the monotonic clock, modulo 2^32; any other server's
/// time is as good as old.
bool isOld(xcb_timestamp_t time)
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch() / 1ms;
    return std::chrono::milliseconds(std::abs(static_cast<int32_t>(static_cast<uint32_t>(now) - time))) >
           handOnLimit;
}

} // namespace

KeyWatch::KeyWatch(const QByteArray &display)
    : m_connection(display),
      m_keyboard(m_connection),
      m_grabs(m_connection)
{
    connect(&m_connection, &X11Connection::eventReceived, this, [this](const xcb_generic_event_t *event) {
        // Nobody's imitations count: a grabbed key is never sent.
        if (event->response_type == XCB_KEY_PRESS || event->response_type == XCB_KEY_RELEASE)
            judge(*event);
    });
    const xcb_query_extension_reply_t *input = xcb_get_extension_data(m_connection.xcb(), &xcb_input_id);
    m_firstInputEvent = input && input->present ? input->first_event : uint8_t(0);
    connect(&m_keyboard, &X11Keyboard::changed, this, [this] { regrab({}); });
}

bool KeyWatch::install(const KeyTap &tap, const QList<KeyChord> &chords, KeyTaps::Handler handler)
{
    m_taps.push_back({.tap = &tap, .handler = std::move(handler), .chords = chords});
    return regrab(chords);
}

bool KeyWatch::watch(const KeyTap &tap, const QList<KeyChord> &chords)
{
    const auto it = std::ranges::find(m_taps, &tap, &Watched::tap);
    if (it == m_taps.end())
        return false;
    it->chords = chords;
    return regrab(chords);
}

void KeyWatch::remove(const KeyTap &tap)
{
    std::erase_if(m_taps, [&](const Watched &watched) { return watched.tap == &tap; });
    regrab({});
}

bool KeyWatch::regrab(const QList<KeyChord> &chords)
{
    QList<KeyChord> wanted;
    for (const Watched &watched : m_taps)
        wanted.append(watched.chords);
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
    fresh &= m_keyboard.keysDown(); // after whose answer no key comes to us that is not watched any more
    for (std::size_t key = 0; key < fresh.size(); ++key) {
        if (fresh[key])
            letGo(static_cast<xcb_keycode_t>(key));
    }
    m_watched = wanted;
    return std::ranges::none_of(chords, [&](const KeyChord &chord) { return refused.contains(chord); });
}

void KeyWatch::judge(const xcb_generic_event_t &generic)
{
    const auto &key = reinterpret_cast<const xcb_key_press_event_t &>(generic); // releases look the same
    const bool isPress = generic.response_type == XCB_KEY_PRESS;
    // What the server says after it has heard that the key is up is a press of its own.
    const bool isRest = m_taken[key.detail] &&
                        (!isPress || static_cast<int32_t>(generic.full_sequence - m_letGoAt[key.detail]) < 0);
    const KeyEvent event{.type = isPress ? KeyEventType::keyDown : KeyEventType::keyUp,
                         .keyCode = KeyPositions::keyCode(key.detail),
                         .flags = m_keyboard.modifiers().flags(key.state),
                         .isAutorepeat = isPress && isRest};
    if (!isPress)
        m_taken.reset(key.detail);
    const bool isOurs = isPress && !isRest && isWatched(event);
    if (isOurs)
        letGo(key.detail);
    const KeyVerdict verdict = ask(isRest, event);
    if (isOurs)
        learnDevice(key.detail);
    if (verdict == KeyVerdict::swallow || isRest)
        return;
    m_taken.reset(key.detail);
    handOn(key);
}

KeyVerdict KeyWatch::ask(bool isRest, const KeyEvent &event) const
{
    for (const Watched &watched : m_taps) {
        // The rest of a swallowed press is reported whatever the modifiers have become.
        const bool isItsOwn = isRest
                                  ? std::ranges::count(watched.chords, event.keyCode, &KeyChord::keyCode) > 0
                                  : watches(watched.chords, event);
        if (isItsOwn && watched.handler(event) == KeyVerdict::swallow)
            return KeyVerdict::swallow;
    }
    return KeyVerdict::pass;
}

bool KeyWatch::isWatched(const KeyEvent &event) const
{
    return std::ranges::any_of(m_taps, [&](const Watched &tap) { return watches(tap.chords, event); });
}

void KeyWatch::letGo(xcb_keycode_t key)
{
    const auto release = static_cast<uint8_t>(
        m_device == 0 ? XCB_KEY_RELEASE : m_firstInputEvent + XCB_INPUT_DEVICE_KEY_RELEASE);
    const auto cookie = xcb_test_fake_input(m_connection.xcb(), release, key, XCB_CURRENT_TIME,
                                            XCB_WINDOW_NONE, 0, 0, m_device);
    m_taken.set(key);
    m_letGoAt[key] = cookie.sequence;
    m_connection.flush();
}

void KeyWatch::learnDevice(xcb_keycode_t key)
{
    // Only where it was another keyboard than the one before is the key still down there.
    const uint8_t device = m_firstInputEvent != 0 ? m_keyboard.deviceHolding(key) : uint8_t(0);
    if (device == 0 || device == m_device)
        return;
    m_device = device;
    if (m_keyboard.keysDown()[key]) // the one before is gone, or switched off
        letGo(key);
}

void KeyWatch::handOn(xcb_key_press_event_t event)
{
    if (isOld(event.time))
        return;
    xcb_connection_t *xcb = m_connection.xcb();
    const auto focus = adopt(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
    if (!focus || focus->focus <= XCB_INPUT_FOCUS_POINTER_ROOT)
        return;
    event.event = focus->focus;
    event.child = XCB_WINDOW_NONE;
    // An empty mask is the program that made the window, whatever kind of event it asked for.
    xcb_send_event(xcb, false, focus->focus, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&event));
    m_connection.flush();
}
