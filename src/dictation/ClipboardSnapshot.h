#pragma once

#include "base/Clock.h"
#include "base/Pasteboard.h"

#include <QCoroTask>
#include <QList>
#include <QString>

#include <memory>
#include <stop_token>

/// The plain text among the formats that something on the clipboard was offered as.
namespace ClipboardText {

/// The text of the first item that has one; empty when none does.
QString of(const QList<PasteboardItem> &items);

} // namespace ClipboardText

/// What was on the clipboard at one moment; under way until its owner has delivered it.
class ClipboardReading
{
public:
    /// A text of ours on the clipboard, and what was there before it.
    struct Cover
    {
        QString text;
        qint64 changeCount = 0; ///< when the text was put there
        std::shared_ptr<const ClipboardReading> below;
    };

    /// Begins to read what is below the cover: another program may have taken its text over meanwhile.
    static std::shared_ptr<const ClipboardReading> begin(Pasteboard &pasteboard, const Clock &clock,
                                                         const Cover &cover);

    /// The change count of the clipboard when it began.
    qint64 changeCount() const { return m_changeCount; }
    bool isDone() const { return m_done.stop_requested(); }
    /// Whether there was nothing but the cover, in other hands.
    bool isCover() const;
    /// What to put back; nothing until that is known.
    QList<PasteboardItem> items() const;

    /// Waits until the reading is done, has taken this long, or a stop is asked for.
    static QCoro::Task<> wait(std::shared_ptr<const ClipboardReading> reading, Clock &clock,
                              Clock::Duration limit, std::stop_token stop);

private:
    static QCoro::Task<> read(Pasteboard &pasteboard, std::shared_ptr<ClipboardReading> reading);

    qint64 m_changeCount = 0;
    Clock::Duration m_began = Clock::Duration::zero();
    Cover m_cover;
    QList<PasteboardItem> m_items;
    std::stop_source m_done; // stopped once the items are there
};

/// What is on the clipboard, read ahead of a paste: nobody has to wait for its owner then.
///
/// Whatever somebody copies until it is taken is read anew.
class ClipboardSnapshot
{
public:
    ClipboardSnapshot(Pasteboard &pasteboard, Clock &clock, const ClipboardReading::Cover &cover);

    /// The reading of what is there now, which may be under way.
    std::shared_ptr<const ClipboardReading> current();
    /// The same; the clipboard is followed no longer.
    std::shared_ptr<const ClipboardReading> take();

private:
    Pasteboard &m_pasteboard;
    Clock &m_clock;
    ClipboardReading::Cover m_cover;
    qint64 m_changeCount;
    std::shared_ptr<const ClipboardReading> m_reading;
    std::unique_ptr<Timer> m_following;
};
