#include "platform/linux/x11/X11KeyTap.h"

#include "platform/linux/x11/X11KeyTaps.h"

X11KeyTap::X11KeyTap(X11KeyTaps &taps, std::span<const KeyChord> chords, KeyTaps::Handler handler)
    : m_taps(taps),
      m_chords(chords.begin(), chords.end()),
      m_handler(std::move(handler))
{
}

X11KeyTap::~X11KeyTap()
{
    m_taps.remove(*this);
}

bool X11KeyTap::watch(std::span<const KeyChord> chords)
{
    m_chords = QList<KeyChord>(chords.begin(), chords.end());
    return m_taps.regrab(m_chords);
}

void X11KeyTap::enable()
{
    m_taps.regrab(m_chords);
}
