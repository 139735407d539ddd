#pragma once

#include "machine/desktop/GlibPointer.h"

#include <functional>
#include <thread>

/// A thread with a main context of its own, for what GLib's libraries tell without being asked.
class GlibThread
{
public:
    GlibThread();
    /// Waits for the work that was handed over before.
    ~GlibThread();
    GlibThread(const GlibThread &) = delete;
    GlibThread &operator=(const GlibThread &) = delete;

    /// Hands work over; it is done in the order of the calls.
    void run(std::function<void()> work);

    /// On the thread itself, from within work: goes on until the condition holds.
    void runUntil(const std::function<bool()> &condition);

private:
    GlibPointer<GMainContext> m_context;
    GlibPointer<GMainLoop> m_loop;
    std::thread m_thread;
};
