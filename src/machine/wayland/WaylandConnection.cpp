#include "machine/wayland/WaylandConnection.h"

#include <wlr-data-control-unstable-v1.h>

#include <QDeadlineTimer>

#include <algorithm>
#include <csignal>
#include <string_view>

#include <poll.h>
#include <wayland-client.h>

namespace {

constexpr int patience = 2000; // milliseconds; a compositor that is busy, or hangs

} // namespace

bool WaylandConnection::answers()
{
    wl_display *display =
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? nullptr : wl_display_connect(nullptr);
    if (display)
        wl_display_disconnect(display);
    return display != nullptr;
}

WaylandConnection::WaylandConnection()
{
    // A reader of our clipboard that goes away must be an error of the pipe, not a signal that ends the
    // program.
    std::signal(SIGPIPE, SIG_IGN);
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return;
    m_display = wl_display_connect(nullptr);
    if (!m_display)
        return;
    static constexpr wl_registry_listener listener{.global = announce, .global_remove = forget};
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &listener, this);
    roundtrip();
    m_seat = bind<wl_seat>(wl_seat_interface, 1);
    if (m_seat) {
        static constexpr wl_seat_listener seatListener{
            .capabilities =
                [](void *self, wl_seat *, uint32_t capabilities) {
                    if (capabilities & WL_SEAT_CAPABILITY_KEYBOARD)
                        static_cast<WaylandConnection *>(self)->m_hasKeyboard = true;
                },
            .name = [](void *, wl_seat *, const char *) {}};
        wl_seat_add_listener(m_seat, &seatListener, this);
        roundtrip();
    }
    m_clipboards = bind<zwlr_data_control_manager_v1>(zwlr_data_control_manager_v1_interface, 2);
    m_notifier = std::make_unique<QSocketNotifier>(wl_display_get_fd(m_display), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &WaylandConnection::dispatch);
}

WaylandConnection::~WaylandConnection()
{
    m_notifier.reset();
    if (!m_display)
        return;
    if (m_clipboards)
        zwlr_data_control_manager_v1_destroy(m_clipboards);
    if (m_seat)
        wl_seat_destroy(m_seat);
    wl_registry_destroy(m_registry);
    flush();
    wl_display_disconnect(m_display);
}

void WaylandConnection::flush()
{
    if (m_display)
        wl_display_flush(m_display);
}

void WaylandConnection::roundtrip()
{
    if (!m_display)
        return;
    bool isDone = false;
    static constexpr wl_callback_listener listener{
        .done = [](void *done, wl_callback *, uint32_t) { *static_cast<bool *>(done) = true; }};
    wl_callback *callback = wl_display_sync(m_display);
    wl_callback_add_listener(callback, &listener, &isDone);
    const QDeadlineTimer deadline(patience);
    while (!isDone && !deadline.hasExpired()) {
        while (wl_display_prepare_read(m_display) != 0)
            wl_display_dispatch_pending(m_display);
        wl_display_flush(m_display);
        pollfd ready{.fd = wl_display_get_fd(m_display), .events = POLLIN, .revents = 0};
        if (poll(&ready, 1, static_cast<int>(deadline.remainingTime())) <= 0) {
            wl_display_cancel_read(m_display);
            break;
        }
        if (wl_display_read_events(m_display) != 0 || wl_display_dispatch_pending(m_display) < 0)
            break;
    }
    wl_callback_destroy(callback);
}

void WaylandConnection::announce(void *self, wl_registry *, uint32_t name, const char *interface,
                                 uint32_t version)
{
    static_cast<WaylandConnection *>(self)->m_globals.push_back({name, interface, version});
}

void WaylandConnection::forget(void *self, wl_registry *, uint32_t name)
{
    std::erase_if(static_cast<WaylandConnection *>(self)->m_globals,
                  [name](const Global &global) { return global.name == name; });
}

bool WaylandConnection::offers(const wl_interface &wanted) const
{
    return std::ranges::any_of(m_globals,
                               [&](const Global &global) { return global.interface == wanted.name; });
}

void *WaylandConnection::bindOne(const Global &global, const wl_interface &wanted, uint32_t version) const
{
    if (global.interface != wanted.name)
        return nullptr;
    return wl_registry_bind(m_registry, global.name, &wanted, std::min(version, global.version));
}

void *WaylandConnection::bindAny(const wl_interface &wanted, uint32_t version) const
{
    const auto it = std::ranges::find(m_globals, std::string_view(wanted.name), &Global::interface);
    return it == m_globals.end() ? nullptr : bindOne(*it, wanted, version);
}

void WaylandConnection::dispatch()
{
    while (wl_display_prepare_read(m_display) != 0)
        wl_display_dispatch_pending(m_display);
    flush();
    const bool isRead = wl_display_read_events(m_display) == 0;
    if (isRead && wl_display_dispatch_pending(m_display) >= 0)
        return flush();
    m_notifier.release()->deleteLater(); // it is the one that is calling
    Q_EMIT lost();
}
