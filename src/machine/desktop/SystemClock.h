#pragma once

#include "base/Clock.h"
#include "machine/desktop/LocalZone.h"

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
