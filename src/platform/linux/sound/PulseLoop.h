#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include <pulse/thread-mainloop.h>

/// The thread on which libpulse works, and the lock that guards everything it touches.
///
/// libpulse calls back on that thread with the lock held. Whoever wants something of a pa_ object
/// from another thread holds the lock meanwhile: `std::unique_lock lock(loop)`.
class PulseLoop final
{
public:
    PulseLoop();
    ~PulseLoop();
    PulseLoop(const PulseLoop &) = delete;
    PulseLoop &operator=(const PulseLoop &) = delete;

    void lock() { pa_threaded_mainloop_lock(m_loop); }
    void unlock() { pa_threaded_mainloop_unlock(m_loop); }

    pa_mainloop_api *api() { return pa_threaded_mainloop_get_api(m_loop); }

    /// Wakes those who wait: something has changed.
    void announce() { m_changed.notify_all(); }

    /// Lets the thread work until the condition holds, at most until the deadline; returns whether it
    /// holds. Never call this from the loop's own thread.
    template <typename Condition>
    bool await(std::unique_lock<PulseLoop> &lock, std::chrono::steady_clock::time_point deadline,
               Condition condition)
    {
        return m_changed.wait_until(lock, deadline, condition);
    }

private:
    pa_threaded_mainloop *m_loop;
    std::condition_variable_any m_changed;
};
