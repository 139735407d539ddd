#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

struct wl_display;
struct wl_registry;
struct wl_seat;
struct zwlr_data_control_manager_v1;

/// The program's own connection to the Wayland compositor, apart from the one of the windows; its events
/// arrive on the event loop of the thread. Outside a Wayland session it is closed, and what it gives is null.
class WaylandConnection final : public QObject
{
    Q_OBJECT
public:
    /// To the compositor that WAYLAND_DISPLAY names.
    WaylandConnection();
    ~WaylandConnection() override;
    Q_DISABLE_COPY_MOVE(WaylandConnection)

    /// Whether the compositor that WAYLAND_DISPLAY names takes connections. Needs no event loop.
    static bool answers();
    wl_seat *seat() const { return m_seat; }
    /// The clipboard for programs without the keyboard (wlr-data-control); null where it is not offered.
    zwlr_data_control_manager_v1 *clipboards() const { return m_clipboards; }
    /// Puts the requests made so far on their way.
    void flush();

Q_SIGNALS:
    /// The compositor went away, and with it every object that came from it: nothing may be asked of them.
    void lost();

private:
    static void announce(void *self, wl_registry *registry, uint32_t name, const char *interface,
                         uint32_t version);
    void dispatch();

    wl_display *m_display = nullptr;
    wl_registry *m_registry = nullptr;
    wl_seat *m_seat = nullptr;
    zwlr_data_control_manager_v1 *m_clipboards = nullptr;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
