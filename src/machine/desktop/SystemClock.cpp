#include "machine/desktop/SystemClock.h"

#include <QTimer>

#include <algorithm>
#include <limits>

namespace {

using std::chrono::milliseconds;

SystemClock::Duration steadyNow()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

int millisecondsOf(SystemClock::Duration duration)
{
    const milliseconds rounded = std::chrono::ceil<milliseconds>(duration);
    return static_cast<int>(std::clamp<int64_t>(rounded.count(), 0, std::numeric_limits<int>::max()));
}

SystemClock::Duration instantAfter(SystemClock::Duration delay)
{
    const SystemClock::Duration now = steadyNow();
    return delay > SystemClock::Duration::max() - now ? SystemClock::Duration::max() : now + delay;
}

/// Rings once at an instant. QTimer counts up to 24 days in whole milliseconds, so it is wound again
/// until the instant has come.
class OneShot final : public Timer
{
public:
    OneShot(SystemClock::Duration delay, std::function<void()> call)
        : m_due(instantAfter(delay)),
          m_call(std::move(call))
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { ring(); });
        m_timer.start(millisecondsOf(delay));
    }

private:
    void ring()
    {
        const SystemClock::Duration left = m_due - steadyNow();
        if (left > SystemClock::Duration::zero()) {
            m_timer.start(millisecondsOf(left));
            return;
        }
        const std::function<void()> call = std::move(m_call);
        call(); // may destroy this timer
    }

    SystemClock::Duration m_due;
    std::function<void()> m_call;
    QTimer m_timer;
};

/// Rings every period.
class Repeating final : public Timer
{
public:
    Repeating(SystemClock::Duration period, std::function<void()> call)
        : m_call(std::make_shared<std::function<void()>>(std::move(call)))
    {
        m_timer.setTimerType(period >= std::chrono::seconds(1) ? Qt::CoarseTimer : Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            const auto kept = m_call; // the call may destroy this timer
            (*kept)();
        });
        m_timer.start(std::max(1, millisecondsOf(period)));
    }

private:
    std::shared_ptr<std::function<void()>> m_call;
    QTimer m_timer;
};

} // namespace

QDateTime SystemClock::now() const
{
    return QDateTime::currentDateTimeUtc();
}

QTimeZone SystemClock::timeZone() const
{
    return m_zone.current();
}

Clock::Duration SystemClock::monotonic() const
{
    return steadyNow();
}

std::unique_ptr<Timer> SystemClock::after(Duration delay, std::function<void()> call)
{
    return std::make_unique<OneShot>(delay, std::move(call));
}

std::unique_ptr<Timer> SystemClock::every(Duration period, std::function<void()> call)
{
    return std::make_unique<Repeating>(period, std::move(call));
}
