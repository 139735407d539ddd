#include "dictation/ClipboardSnapshot.h"

#include "base/Sleep.h"

#include <chrono>
#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

std::optional<QString> textOf(const PasteboardItem &item)
{
    for (const auto &type : {"UTF8_STRING"_L1, "text/plain;charset=utf-8"_L1, "text/plain"_L1, "STRING"_L1}) {
        for (const PasteboardData &data : item) {
            if (data.type.compare(type, Qt::CaseInsensitive) != 0)
                continue;
            // the oldest format is Latin-1 by definition
            return type == "STRING"_L1 ? QString::fromLatin1(data.bytes) : QString::fromUtf8(data.bytes);
        }
    }
    return std::nullopt;
}

// Programs make a picture only when asked for it: a large one takes up to 3 s.
constexpr auto timeLimit = 5s;

constexpr auto followInterval = 100ms;

} // namespace

QString ClipboardText::of(const QList<PasteboardItem> &items)
{
    for (const PasteboardItem &item : items) {
        if (const auto text = textOf(item))
            return *text;
    }
    return {};
}

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
