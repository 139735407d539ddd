#include "capture/TextInserter.h"

#include "platform/AccessibilityTrust.h"
#include "platform/KeyPoster.h"
#include "platform/Pasteboard.h"
#include "platform/Sleep.h"
#include "settings/Prefs.h"

using namespace std::chrono_literals;

namespace {

// Time for the application to learn of the new clipboard before it is asked to paste.
constexpr auto settleDelay = 50ms;
// Time for the application to fetch the text before the old contents return.
constexpr auto restoreDelay = 500ms;

constexpr qint64 keyCodeV = 9;

} // namespace

TextInserter::TextInserter(Pasteboard &pasteboard, KeyPoster &keys, const AccessibilityTrust &trust,
                           const Prefs &prefs, Clock &clock)
    : m_pasteboard(pasteboard),
      m_keys(keys),
      m_trust(trust),
      m_prefs(prefs),
      m_clock(clock)
{
}

QCoro::Task<bool> TextInserter::insert(QString text, std::stop_token stop)
{
    const bool trusted = m_trust.isTrusted();
    const bool restores = trusted && m_prefs.isEnabled(PrefsKey::restoreClipboard);
    QList<PasteboardItem> saved;
    if (restores)
        saved = co_await m_pasteboard.items();
    if (stop.stop_requested())
        co_return false; // the inserter may be gone
    if (!trusted && !reachesClipboard())
        co_return false; // nor may it take the place of what the user will have copied by then
    m_pasteboard.setString(text);
    qint64 count = m_pasteboard.changeCount();
    if (!trusted)
        co_return false;
    co_await sleepFor(m_clock, settleDelay, stop);
    if (m_pasteboard.changeCount() != count && !stop.stop_requested()) {
        // Somebody took the clipboard just now. What they put there is not what was said, and theirs again
        // afterwards.
        if (restores)
            saved = co_await m_pasteboard.items();
        if (stop.stop_requested())
            co_return false;
        m_pasteboard.setString(text);
        count = m_pasteboard.changeCount();
        co_await sleepFor(m_clock, settleDelay, stop);
    }
    if (stop.stop_requested()) {
        if (!saved.isEmpty() && m_pasteboard.changeCount() == count)
            m_pasteboard.setItems(saved);
        co_return false;
    }
    const bool pasted = co_await pressCommandV();
    if (!pasted || saved.isEmpty() || stop.stop_requested())
        co_return pasted;
    co_await sleepFor(m_clock, restoreDelay, stop);
    if (m_pasteboard.changeCount() == count)
        m_pasteboard.setItems(saved);
    co_return true;
}

bool TextInserter::reachesClipboard() const
{
    return m_pasteboard.isReachable();
}

QCoro::Task<bool> TextInserter::pressCommandV()
{
    if (!m_trust.isTrusted())
        co_return false;
    const KeyChord commandV{keyCodeV, KeyFlags::command};
    co_return co_await m_keys.post(commandV);
}
