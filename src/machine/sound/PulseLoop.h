#pragma once

#include <QLoggingCategory>
#include <QObject>

#include <chrono>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <pulse/mainloop-api.h>
#include <pulse/mainloop.h>

Q_DECLARE_LOGGING_CATEGORY(soundLog)

/// The thread on which libpulse works. Everything of libpulse is touched there alone: other threads post what
/// they want, and the main thread is told what came of it. So nobody waits for an audio server that hangs.
class PulseLoop final
{
public:
    using Task = std::function<void()>;

    PulseLoop();
    ~PulseLoop();
    Q_DISABLE_COPY_MOVE(PulseLoop)

    /// Has the loop's thread do this after all that was posted before. From any thread.
    void post(Task task);

    /// Has the main thread do this at its next turn, unless this loop is gone by then. From any thread.
    void tellMain(Task task);

    /// Does what was posted, and ends the thread. Nothing may be posted afterwards.
    void end();

    /// For those who are on the loop's thread.
    pa_mainloop_api *api() { return pa_mainloop_get_api(m_loop); }

private:
    void doPosted();

    pa_mainloop *m_loop;
    int m_bell; // rung when something is posted
    std::mutex m_mutex;
    std::vector<Task> m_posted; // guarded by the mutex
    QObject m_main;
    std::thread m_thread;
};

/// A call that the loop's thread makes once, after a while. Destroying the timer cancels it, also from within
/// the call; for that thread alone.
class LoopTimer final
{
public:
    LoopTimer(PulseLoop &loop, std::chrono::microseconds delay, PulseLoop::Task call);
    ~LoopTimer();
    Q_DISABLE_COPY_MOVE(LoopTimer)

private:
    pa_mainloop_api *m_api;
    PulseLoop::Task m_call;
    pa_time_event *m_event;
};
