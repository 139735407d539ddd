#pragma once

#include "base/Clock.h"

#include <QByteArray>
#include <QTimeZone>

#include <sys/stat.h>

/// Where the user is, by the rules of the C library.
///
/// Qt knows zones by name and by a complete rule. The C library, and with it every other program of the
/// desktop, also takes the path of a zone's file, an offset alone, a rule without dates, and goes by UTC
/// where there is nothing at all. What Qt calls the system's zone is used where both say the same.
class LocalZone
{
public:
    /// Always valid. Follows $TZ and /etc/localtime.
    const QTimeZone &current();

private:
    QTimeZone m_zone;
    QByteArray m_variable; // what the zone was made of
    struct stat m_file = {};
};

/// The computer's own clocks; pending calls come from the main thread's event loop.
///
/// A single call is never early and at most a few milliseconds late. A repeating call with a period of
/// a second or more may be up to 5 % off its beat, so that the computer wakes up once for many timers.
class SystemClock final : public Clock
{
public:
    QDateTime now() const override;
    QTimeZone timeZone() const override;
    Duration monotonic() const override;
    std::unique_ptr<Timer> after(Duration delay, std::function<void()> call) override;
    std::unique_ptr<Timer> every(Duration period, std::function<void()> call) override;

private:
    mutable LocalZone m_zone;
};
