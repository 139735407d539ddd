#include "support/VirtualClock.h"

#include <QCoreApplication>

#include <algorithm>

class VirtualClock::VirtualTimer final : public Timer
{
public:
    explicit VirtualTimer(VirtualClock &clock) : m_clock(clock) {}
    ~VirtualTimer() override
    {
        std::erase_if(m_clock.m_due, [this](const auto &due) { return due.second.timer == this; });
    }

private:
    VirtualClock &m_clock;
};

std::unique_ptr<Timer> VirtualClock::after(Duration delay, std::function<void()> call)
{
    return schedule(delay, Duration::zero(), std::move(call));
}

std::unique_ptr<Timer> VirtualClock::every(Duration period, std::function<void()> call)
{
    return schedule(period, period, std::move(call));
}

std::unique_ptr<Timer> VirtualClock::schedule(Duration delay, Duration period, std::function<void()> call)
{
    auto timer = std::make_unique<VirtualTimer>(*this);
    m_due.emplace(std::pair(m_time + std::max(delay, Duration::zero()), m_serial++),
                  Entry{timer.get(), period, std::move(call)});
    return timer;
}

void VirtualClock::advance(Duration duration)
{
    const Duration end = m_time + duration;
    QCoreApplication::processEvents();
    while (!m_due.empty() && m_due.begin()->first.first <= end) {
        const auto node = m_due.extract(m_due.begin());
        m_time = node.key().first;
        const std::function<void()> call = node.mapped().call;
        if (node.mapped().period > Duration::zero())
            m_due.emplace(std::pair(m_time + node.mapped().period, m_serial++), node.mapped());
        call();
        QCoreApplication::processEvents();
    }
    m_time = end;
}

void VirtualClock::jumpTo(const QDateTime &wallTime)
{
    m_epoch = wallTime.addMSecs(-std::chrono::duration_cast<std::chrono::milliseconds>(m_time).count());
}
