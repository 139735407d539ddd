#pragma once

#include "base/Clock.h"

#include <QCoroTask>

#include <coroutine>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>

/// One wait of one coroutine, on the main thread: for a delay, or until a stop is asked for.
class Sleep
{
public:
    Sleep(Clock &clock, Clock::Duration delay, std::stop_token stop)
        : m_clock(clock),
          m_delay(delay),
          m_stop(std::move(stop))
    {
    }
    Sleep(const Sleep &) = delete;
    Sleep &operator=(const Sleep &) = delete;

    /// What to `co_await`; it refers to the sleep, which must stay in place meanwhile.
    struct Awaiter
    {
        Sleep *sleep;
        bool await_ready() const
        {
            return sleep->m_delay <= Clock::Duration::zero() || sleep->m_stop.stop_requested();
        }
        void await_suspend(std::coroutine_handle<> waiter) const { sleep->begin(waiter); }
        void await_resume() const { sleep->end(); }
    };

private:
    void begin(std::coroutine_handle<> waiter)
    {
        m_timer = m_clock.after(m_delay, [waiter] { waiter.resume(); });
        m_onStop.emplace(m_stop, [this, waiter] {
            m_timer.reset();
            waiter.resume();
        });
    }

    void end()
    {
        m_onStop.reset();
        m_timer.reset();
    }

    Clock &m_clock;
    Clock::Duration m_delay;
    std::stop_token m_stop;
    std::unique_ptr<Timer> m_timer;
    std::optional<std::stop_callback<std::function<void()>>> m_onStop;
};

/// Waits for the delay, or until a stop is asked for; the caller looks at the token to tell which.
inline QCoro::Task<> sleepFor(Clock &clock, Clock::Duration delay, std::stop_token stop)
{
    Sleep sleep(clock, delay, std::move(stop));
    const Sleep::Awaiter awaiter(&sleep);
    co_await awaiter;
}

/// The same, ended by either.
inline QCoro::Task<> sleepFor(Clock &clock, Clock::Duration delay, std::stop_token stop,
                              std::stop_token other)
{
    std::stop_source either;
    const std::function<void()> end = [either] {
        std::stop_source held = either; // this wait is over before the request returns
        held.request_stop();
    };
    const std::stop_callback onStop(stop, end);
    const std::stop_callback onOther(other, end);
    const std::stop_token ended = either.get_token();
    co_await sleepFor(clock, delay, ended);
}
