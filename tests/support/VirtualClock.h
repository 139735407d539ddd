#pragma once

#include "base/Clock.h"

#include <cstdint>
#include <map>

/// Time that stands still until a test moves it.
class VirtualClock final : public Clock
{
public:
    QDateTime now() const override
    {
        return m_epoch.addMSecs(std::chrono::duration_cast<std::chrono::milliseconds>(m_time).count());
    }
    QTimeZone timeZone() const override { return zone; }
    Duration monotonic() const override { return m_time; }
    std::unique_ptr<Timer> after(Duration delay, std::function<void()> call) override;
    std::unique_ptr<Timer> every(Duration period, std::function<void()> call) override;

    /// Moves time on, running what falls due in order, posted events in between.
    void advance(Duration duration);
    /// Sets the wall clock alone.
    void jumpTo(const QDateTime &wallTime);
    /// How many timers are pending.
    size_t pendingTimers() const { return m_due.size(); }

    QTimeZone zone = QTimeZone::utc();

private:
    class VirtualTimer;
    struct Entry
    {
        VirtualTimer *timer;
        Duration period; // zero for a single shot
        std::function<void()> call;
    };
    std::unique_ptr<Timer> schedule(Duration delay, Duration period, std::function<void()> call);

    QDateTime m_epoch = QDateTime(QDate(2026, 3, 1), QTime(9, 15, 42), QTimeZone::utc());
    Duration m_time = Duration::zero();
    uint64_t m_serial = 0;
    std::map<std::pair<Duration, uint64_t>, Entry> m_due;
};
