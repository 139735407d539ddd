#pragma once

#include <functional>
#include <memory>
#include <thread>
#include <type_traits>

#include <gio/gio.h>

/// Gives a GLib value back in the way that its type asks for.
struct GlibRelease
{
    template <typename T>
    void operator()(T *value) const
    {
        if constexpr (std::is_same_v<T, GError>)
            g_error_free(value);
        else if constexpr (std::is_same_v<T, GVariant>)
            g_variant_unref(value);
        else if constexpr (std::is_same_v<T, GMainContext>)
            g_main_context_unref(value);
        else if constexpr (std::is_same_v<T, GMainLoop>)
            g_main_loop_unref(value);
        else if constexpr (std::is_same_v<T, GSource>)
            g_source_unref(value);
        else
            g_object_unref(value);
    }
};

/// Sole owner of one reference.
template <typename T>
using GlibPointer = std::unique_ptr<T, GlibRelease>;

/// The same, for a reference that several share.
template <typename T>
std::shared_ptr<T> glibShared(T *value)
{
    return value ? std::shared_ptr<T>(value, GlibRelease()) : nullptr;
}

/// A thread with a main context of its own, for what GLib's libraries tell without being asked.
class GlibThread
{
public:
    GlibThread();
    /// Waits for the work that was handed over before.
    ~GlibThread();
    Q_DISABLE_COPY_MOVE(GlibThread)

    /// Hands work over; it is done in the order of the calls.
    void run(std::function<void()> work);

    /// On the thread itself, from within work: goes on until the condition holds.
    void runUntil(const std::function<bool()> &condition);

private:
    GlibPointer<GMainContext> m_context;
    GlibPointer<GMainLoop> m_loop;
    std::thread m_thread;
};
