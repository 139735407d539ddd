#include "machine/sound/PulseLoop.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <utility>

#include <pthread.h>
#include <pulse/timeval.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

} // namespace

Q_LOGGING_CATEGORY(soundLog, "com.sayvane.app.sound")

PulseLoop::PulseLoop() : m_loop(pa_mainloop_new()), m_bell(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_bell < 0) {
        qCWarning(soundLog) << "The thread for sound cannot be reached; there is no microphone:"
                            << qt_error_string(errno);
        return;
    }
    api()->io_new(
        api(), m_bell, PA_IO_EVENT_INPUT,
        [](pa_mainloop_api *, pa_io_event *, int, pa_io_event_flags_t, void *self) {
            static_cast<PulseLoop *>(self)->doPosted();
        },
        this);
    m_thread = std::thread([this] { pa_mainloop_run(m_loop, nullptr); });
    pthread_setname_np(m_thread.native_handle(), "sound");
}

PulseLoop::~PulseLoop()
{
    end();
    pa_mainloop_free(m_loop);
    if (m_bell >= 0)
        close(m_bell);
}

void PulseLoop::post(Task task)
{
    {
        const std::lock_guard lock(m_mutex);
        m_posted.push_back(std::move(task));
    }
    constexpr uint64_t once = 1;
    // A bell that is full has been rung.
    [[maybe_unused]] const ssize_t rung = write(m_bell, &once, sizeof once);
}

void PulseLoop::tellMain(Task task)
{
    QMetaObject::invokeMethod(&m_main, std::move(task), Qt::QueuedConnection);
}

void PulseLoop::end()
{
    if (!m_thread.joinable())
        return;
    post([this] { pa_mainloop_quit(m_loop, 0); });
    m_thread.join();
}

void PulseLoop::doPosted()
{
    uint64_t rings = 0;
    [[maybe_unused]] const ssize_t heard = read(m_bell, &rings, sizeof rings);
    std::vector<Task> tasks;
    {
        const std::lock_guard lock(m_mutex);
        tasks.swap(m_posted);
    }
    for (Task &task : tasks)
        std::exchange(task, nullptr)(); // with what it holds: much of that may die on this thread only
}

LoopTimer::LoopTimer(PulseLoop &loop, std::chrono::microseconds delay, PulseLoop::Task call)
    : m_api(loop.api()),
      m_call(std::move(call))
{
    timeval when;
    pa_timeval_add(pa_gettimeofday(&when), pa_usec_t(std::max(delay, 0us).count()));
    m_event = m_api->time_new(
        m_api, &when,
        [](pa_mainloop_api *api, pa_time_event *event, const timeval *, void *data) {
            auto *self = static_cast<LoopTimer *>(data);
            api->time_restart(event, nullptr);
            std::exchange(self->m_call, nullptr)();
        },
        this);
}

LoopTimer::~LoopTimer()
{
    m_api->time_free(m_event);
}
