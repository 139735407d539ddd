#include "machine/sound/LoopTimer.h"

#include <algorithm>
#include <utility>

#include <pulse/timeval.h>

namespace {

using namespace std::chrono_literals;

} // namespace

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
