#pragma once

#include "machine/sound/PulseLoop.h"

#include <chrono>

#include <pulse/mainloop-api.h>

/// A call that the loop's thread makes once, after a while. Destroying the timer cancels it, also from within
/// the call; for that thread alone.
class LoopTimer final
{
public:
    LoopTimer(PulseLoop &loop, std::chrono::microseconds delay, PulseLoop::Task call);
    ~LoopTimer();
    LoopTimer(const LoopTimer &) = delete;
    LoopTimer &operator=(const LoopTimer &) = delete;

private:
    pa_mainloop_api *m_api;
    PulseLoop::Task m_call;
    pa_time_event *m_event;
};
