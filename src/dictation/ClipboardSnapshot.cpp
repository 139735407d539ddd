#include "dictation/ClipboardSnapshot.h"

#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr auto followInterval = 100ms;

} // namespace

ClipboardSnapshot::ClipboardSnapshot(Pasteboard &pasteboard, Clock &clock,
                                     const ClipboardReading::Cover &cover)
    : m_pasteboard(pasteboard),
      m_clock(clock),
      m_cover(cover),
      m_changeCount(pasteboard.changeCount()),
      m_reading(ClipboardReading::begin(pasteboard, clock, cover)),
      m_following(clock.every(followInterval, [this] { current(); }))
{
}

std::shared_ptr<const ClipboardReading> ClipboardSnapshot::current()
{
    if (m_pasteboard.changeCount() != m_changeCount) {
        m_changeCount = m_pasteboard.changeCount();
        m_reading = ClipboardReading::begin(m_pasteboard, m_clock, m_cover);
    }
    return m_reading;
}

std::shared_ptr<const ClipboardReading> ClipboardSnapshot::take()
{
    m_following.reset();
    return current();
}
