#pragma once

#include <QCoroTask>
#include <QString>

#include <stop_token>

class AccessibilityTrust;
class Clock;
class KeyPoster;
class Pasteboard;
class Prefs;

/// Puts a finished dictation into the application that has the keyboard focus.
class TextInserter
{
public:
    TextInserter(Pasteboard &pasteboard, KeyPoster &keys, const AccessibilityTrust &trust, const Prefs &prefs,
                 Clock &clock);

    /// Pastes the text and, where the user wants it, puts back what was on the clipboard before, unless
    /// somebody else has used the clipboard meanwhile. True once the paste keystroke was sent; false when
    /// the text is only on the clipboard, or, where that is out of reach, nowhere. A stop request ends the
    /// waits early.
    QCoro::Task<bool> insert(QString text, std::stop_token stop);
    bool reachesClipboard() const;

private:
    QCoro::Task<bool> pressCommandV();

    Pasteboard &m_pasteboard;
    KeyPoster &m_keys;
    const AccessibilityTrust &m_trust;
    const Prefs &m_prefs;
    Clock &m_clock;
};
