#pragma once

#include "base/Clock.h"
#include "dictation/ClipboardReading.h"

#include <memory>

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
