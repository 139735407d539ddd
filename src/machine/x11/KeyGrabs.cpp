#include "machine/x11/KeyGrabs.h"

#include "machine/desktop/KeyPositions.h"
#include "machine/x11/ModifierMap.h"
#include "machine/x11/X11Connection.h"

#include <vector>

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
