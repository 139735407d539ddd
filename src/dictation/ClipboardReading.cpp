#include "dictation/ClipboardReading.h"

#include "base/Sleep.h"
#include "dictation/ClipboardText.h"

using namespace std::chrono_literals;

namespace {

// Programs make a picture only when asked for it: a large one takes up to 3 s.
constexpr auto timeLimit = 5s;

} // namespace

std::shared_ptr<const ClipboardReading> ClipboardReading::begin(Pasteboard &pasteboard, const Clock &clock,
                                                                const Cover &cover)
{
    const qint64 changeCount = pasteboard.changeCount();
    if (cover.below && cover.changeCount == changeCount)
        return cover.below;
    auto reading = std::make_shared<ClipboardReading>();
    reading->m_changeCount = changeCount;
    reading->m_began = clock.monotonic();
    // What we ourselves put there since is somebody's wish, even if it is the same text.
    if (!pasteboard.isOurs())
        reading->m_cover = cover;
    read(pasteboard, reading);
    return reading;
}

QCoro::Task<> ClipboardReading::read(Pasteboard &pasteboard, std::shared_ptr<ClipboardReading> reading)
{
    QCoro::Task<QList<PasteboardItem>> arriving = pasteboard.items(timeLimit);
    reading->m_items = co_await arriving;
    reading->m_done.request_stop();
}

bool ClipboardReading::isCover() const
{
    return isDone() && m_cover.below && !m_items.isEmpty() && ClipboardText::of(m_items) == m_cover.text;
}

QList<PasteboardItem> ClipboardReading::items() const
{
    if (!isDone())
        return {};
    return isCover() ? m_cover.below->items() : m_items;
}

QCoro::Task<> ClipboardReading::wait(std::shared_ptr<const ClipboardReading> reading, Clock &clock,
                                     Clock::Duration limit, std::stop_token stop)
{
    const Clock::Duration left = reading->m_began + limit - clock.monotonic();
    const std::stop_token done = reading->m_done.get_token();
    co_await sleepFor(clock, left, stop, done);
}
