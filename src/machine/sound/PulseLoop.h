#pragma once

#include <QObject>

#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <pulse/mainloop.h>

/// The thread on which libpulse works. Everything of libpulse is touched there alone: other threads post what
/// they want, and the main thread is told what came of it. So nobody waits for an audio server that hangs.
class PulseLoop final
{
public:
    using Task = std::function<void()>;

    PulseLoop();
    ~PulseLoop();
    PulseLoop(const PulseLoop &) = delete;
    PulseLoop &operator=(const PulseLoop &) = delete;

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
