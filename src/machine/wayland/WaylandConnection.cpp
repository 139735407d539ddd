#include "machine/wayland/WaylandConnection.h"

#include <wlr-data-control-unstable-v1.h>

#include <csignal>
#include <string_view>

#include <wayland-client.h>

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
    static constexpr wl_registry_listener listener{.global = announce,
                                                   .global_remove = [](void *, wl_registry *, uint32_t) {}};
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &listener, this);
    wl_display_roundtrip(m_display);
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

void WaylandConnection::announce(void *self, wl_registry *registry, uint32_t name, const char *interface,
                                 uint32_t)
{
    auto &connection = *static_cast<WaylandConnection *>(self);
    const auto bind = [&](const wl_interface &wanted) {
        return wl_registry_bind(registry, name, &wanted, 1);
    };
    if (interface == std::string_view(wl_seat_interface.name) && !connection.m_seat)
        connection.m_seat = static_cast<wl_seat *>(bind(wl_seat_interface));
    else if (interface == std::string_view(zwlr_data_control_manager_v1_interface.name))
        connection.m_clipboards =
            static_cast<zwlr_data_control_manager_v1 *>(bind(zwlr_data_control_manager_v1_interface));
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
