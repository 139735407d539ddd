#include "dictation/TextInserter.h"

#include "base/AccessibilityTrust.h"
#include "base/KeyPoster.h"
#include "base/Pasteboard.h"
#include "base/Presence.h"
#include "base/Sleep.h"
#include "base/Text.h"
#include "dictation/ClipboardSnapshot.h"
#include "preferences/Prefs.h"

#include <utility>

using namespace std::chrono_literals;

namespace {

// Time for the application to learn of the new clipboard before it is asked to paste.
constexpr auto settleDelay = 50ms;
// Time for the application to fetch the text before the old contents return.
constexpr auto restoreDelay = 500ms;
// An application that is busy may fetch it this much later.
constexpr auto lateDelay = 2500ms;
// Several formats may be asked for, each after the other has come.
constexpr auto quietInterval = 100ms;
// Ordinary owners have delivered by then, and slow ones know what is wanted of them.
constexpr auto readAllowance = 100ms;
// Longer than a reading of the clipboard can take.
constexpr auto readLimit = 6s;

// A disk that needs longer to take the text hangs, and nobody's typing hangs with it.
constexpr auto storeLimit = 5s;

constexpr qint64 keyCodeV = 9;

} // namespace

TextInserter::TextInserter(Pasteboard &pasteboard, KeyPoster &keys, const AccessibilityTrust &trust,
                           const Presence &presence, const Prefs &prefs, Clock &clock)
    : m_pasteboard(pasteboard),
      m_keys(keys),
      m_trust(trust),
      m_presence(presence),
      m_prefs(prefs),
      m_clock(clock)
{
}

std::shared_ptr<ClipboardSnapshot> TextInserter::prepare()
{
    if (!m_trust.canType() || !m_prefs.restoreClipboard())
        return nullptr;
    const auto last = m_lastPaste.lock();
    auto snapshot = std::make_shared<ClipboardSnapshot>(m_pasteboard, m_clock, last ? *last : Paste());
    m_prepared = snapshot;
    return snapshot;
}

// A stop may be the end of the inserter: after each wait it is looked for first.
QCoro::Task<bool> TextInserter::insert(QString text, std::stop_token stop, std::stop_token stored)
{
    if (!mayType()) {
        // Out of reach it may not take the place of what the user will have copied by then.
        if (!stop.stop_requested() && reachesClipboard())
            m_pasteboard.setString(text);
        co_return false;
    }
    const auto paste = std::make_shared<Paste>();
    paste->text = Text::withoutControls(text);
    paste->below = co_await readBefore(stop);
    if (stop.stop_requested())
        co_return false;
    put(*paste);
    m_lastPaste = paste;
    QCoro::Task<> settling = sleepFor(m_clock, settleDelay, stop);
    m_keys.prepare();
    co_await settling;
    if (stored.stop_possible() && !stop.stop_requested())
        co_await sleepFor(m_clock, storeLimit, stop, stored);
    if (!stop.stop_requested() && !isThere(*paste))
        co_await putAgain(paste, stop);
    if (stop.stop_requested()) {
        putBack(paste, m_pasteboard.readCount(), stop);
        co_return false;
    }
    const qint64 readsBefore = m_pasteboard.readCount();
    const bool pasted = co_await pressCommandV();
    const bool isNothingToPutBack =
        !paste->below || (paste->below->isDone() && paste->below->items().isEmpty());
    if (!pasted || isNothingToPutBack || stop.stop_requested())
        co_return pasted;
    co_await sleepFor(m_clock, restoreDelay, stop);
    putBack(paste, readsBefore, stop);
    co_return true;
}

/// What is on the clipboard now, its reading perhaps still under way; null when it is not to be put back.
QCoro::Task<TextInserter::Reading> TextInserter::readBefore(std::stop_token stop)
{
    std::shared_ptr<ClipboardSnapshot> snapshot = m_prepared.lock();
    m_prepared.reset();
    Reading reading;
    if (!m_prefs.restoreClipboard())
        co_return reading;
    if (!snapshot)
        snapshot = prepare();
    for (int round = 0; round < 2 && !stop.stop_requested(); ++round) { // somebody may copy meanwhile
        reading = snapshot->current();
        co_await ClipboardReading::wait(reading, m_clock, readAllowance, stop);
    }
    if (!stop.stop_requested())
        reading = snapshot->take();
    co_return reading;
}

// Somebody took the clipboard just now. A clipboard manager that keeps the text does no harm. Anything else
// is not what was said, and theirs again afterwards.
QCoro::Task<> TextInserter::putAgain(std::shared_ptr<Paste> paste, std::stop_token stop)
{
    if (paste->below) {
        const Reading theirs = ClipboardReading::begin(m_pasteboard, m_clock, *paste);
        co_await ClipboardReading::wait(theirs, m_clock, readAllowance, stop);
        if (stop.stop_requested())
            co_return;
        if (theirs->isCover() && theirs->changeCount() == m_pasteboard.changeCount()) {
            paste->changeCount = theirs->changeCount();
            co_return;
        }
        paste->below = theirs;
    }
    put(*paste);
    co_await sleepFor(m_clock, settleDelay, stop);
}

QCoro::Task<> TextInserter::putBack(std::shared_ptr<Paste> paste, qint64 readsBefore, std::stop_token stop)
{
    const Reading before = paste->below;
    if (!before)
        co_return;
    if (isThere(*paste) && m_pasteboard.isOurs())
        co_await waitUntilRead(paste, readsBefore, stop);
    if (!isThere(*paste) && !m_pasteboard.isOurs() && !stop.stop_requested()) {
        const Reading theirs = ClipboardReading::begin(m_pasteboard, m_clock, *paste);
        co_await ClipboardReading::wait(theirs, m_clock, readLimit, stop);
        if (theirs->isCover())
            paste->changeCount = theirs->changeCount();
    }
    co_await ClipboardReading::wait(before, m_clock, readLimit, stop);
    if (isThere(*paste) && !before->items().isEmpty())
        m_pasteboard.setItems(before->items());
}

QCoro::Task<> TextInserter::waitUntilRead(std::shared_ptr<const Paste> paste, qint64 readsBefore,
                                          std::stop_token stop)
{
    const Clock::Duration deadline = m_clock.monotonic() + lateDelay;
    qint64 reads = readsBefore;
    bool isQuiet = m_pasteboard.readCount() != readsBefore; // it was read in time
    while (!isQuiet && isThere(*paste) && m_clock.monotonic() < deadline && !stop.stop_requested()) {
        reads = m_pasteboard.readCount();
        co_await sleepFor(m_clock, quietInterval, stop);
        isQuiet = reads != readsBefore && m_pasteboard.readCount() == reads;
    }
}

void TextInserter::put(Paste &paste)
{
    m_pasteboard.setString(paste.text);
    paste.changeCount = m_pasteboard.changeCount();
}

bool TextInserter::isThere(const Paste &paste) const
{
    return m_pasteboard.changeCount() == paste.changeCount;
}

bool TextInserter::reachesClipboard() const
{
    return m_pasteboard.isReachable();
}

bool TextInserter::mayType() const
{
    return m_trust.canType() && !m_presence.isAway();
}

QCoro::Task<bool> TextInserter::pressCommandV()
{
    if (!mayType())
        co_return false;
    const KeyChord commandV{keyCodeV, KeyFlags::command};
    const std::function<bool()> mayStill = [&trust = m_trust, &presence = m_presence] {
        return trust.canType() && !presence.isAway();
    };
    co_return co_await m_keys.post(commandV, mayStill);
}
