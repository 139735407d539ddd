#include "platform/linux/sound/PulseLoop.h"

#include "platform/linux/sound/soundLog.h"

PulseLoop::PulseLoop() : m_loop(pa_threaded_mainloop_new())
{
    pa_threaded_mainloop_set_name(m_loop, "sound");
    if (pa_threaded_mainloop_start(m_loop) < 0)
        qCWarning(soundLog) << "No thread for sound could be started; there is no microphone";
}

PulseLoop::~PulseLoop()
{
    pa_threaded_mainloop_stop(m_loop);
    pa_threaded_mainloop_free(m_loop);
}
