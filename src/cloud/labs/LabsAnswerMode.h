#pragma once

#include "base/Clock.h"

#include <QObject>

#include <memory>

class Prefs;

/// Whether ordinary dictations are answered by an assistant. It switches itself off 30 minutes after it was
/// switched on, also across restarts: the end is a preference.
///
/// A clock that is set, or a computer that sleeps, never makes it last longer.
class LabsAnswerMode final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled NOTIFY enabledChanged)
public:
    /// Goes on where an earlier run left off.
    LabsAnswerMode(Prefs &prefs, Clock &clock);

    bool enabled() const { return m_enabled; }
    /// Switching on what is on does not renew the 30 minutes.
    Q_INVOKABLE void setEnabled(bool on);

    /// Waits anew for the stored end.
    void armExpiry();

Q_SIGNALS:
    void enabledChanged();

private:
    void awaitExpiry();
    bool isOver() const;

    Prefs &m_prefs;
    Clock &m_clock;
    bool m_enabled = false;
    Clock::Duration m_deadline = Clock::Duration::zero(); // on the monotonic clock
    std::unique_ptr<Timer> m_expireTask;
};
