#pragma once

#include "dictation/ClipboardSnapshot.h"

#include <QCoroTask>
#include <QString>

#include <memory>
#include <stop_token>

class AccessibilityTrust;
class ClipboardSnapshot;
class Clock;
class KeyPoster;
class Pasteboard;
class Prefs;
class Presence;

/// Puts a finished dictation into the application that has the keyboard focus.
class TextInserter
{
public:
    TextInserter(Pasteboard &pasteboard, KeyPoster &keys, const AccessibilityTrust &trust,
                 const Presence &presence, const Prefs &prefs, Clock &clock);

    /// Reads what is on the clipboard ahead of the next `insert`, for as long as the result is kept. Null
    /// where nothing will be put back.
    std::shared_ptr<ClipboardSnapshot> prepare();

    /// Pastes the text and, where the user wants it, puts back what was on the clipboard before, unless
    /// somebody else has used the clipboard meanwhile. True once the paste keystroke was sent; false when
    /// the text is only on the clipboard, or, where that is out of reach, nowhere. A stop request ends the
    /// waits early. The keystroke waits until `stored` is told as well, some seconds at most: what does not
    /// wait for anything gives none.
    ///
    /// The old contents return half a second after the keystroke; behind the caller's back, and later, when
    /// the application has not yet asked for the text or the contents are still arriving from their owner.
    QCoro::Task<bool> insert(QString text, std::stop_token stop, std::stop_token stored = {});
    bool reachesClipboard() const;

private:
    using Reading = std::shared_ptr<const ClipboardReading>;
    /// The text on the clipboard; what was there before is null when it is not to return.
    using Paste = ClipboardReading::Cover;

    QCoro::Task<Reading> readBefore(std::stop_token stop);
    QCoro::Task<> putAgain(std::shared_ptr<Paste> paste, std::stop_token stop);
    QCoro::Task<> putBack(std::shared_ptr<Paste> paste, qint64 readsBefore, std::stop_token stop);
    QCoro::Task<> waitUntilRead(std::shared_ptr<const Paste> paste, qint64 readsBefore, std::stop_token stop);
    void put(Paste &paste);
    bool isThere(const Paste &paste) const;
    /// Whether keys may be sent; while nobody is there they would go to the lock.
    bool mayType() const;
    QCoro::Task<bool> pressCommandV();

    Pasteboard &m_pasteboard;
    KeyPoster &m_keys;
    const AccessibilityTrust &m_trust;
    const Presence &m_presence;
    const Prefs &m_prefs;
    Clock &m_clock;
    std::weak_ptr<ClipboardSnapshot> m_prepared;
    std::weak_ptr<const Paste> m_lastPaste; // until its clipboard is put back
};
