#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct wl_display;
struct wl_interface;
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
    bool isOpen() const { return m_display; }
    wl_seat *seat() const { return m_seat; }
    /// Whether the seat has, or had, a keyboard.
    bool hasKeyboard() const { return m_hasKeyboard; }
    /// The clipboard for programs without the keyboard (wlr-data-control); null where it is not offered.
    zwlr_data_control_manager_v1 *clipboards() const { return m_clipboards; }
    /// Whatever else the compositor offers under that interface's name, in that version at most; null where
    /// it offers none. Who asks destroys it.
    template <typename Proxy>
    Proxy *bind(const wl_interface &wanted, uint32_t version) const
    {
        return static_cast<Proxy *>(bindAny(wanted, version));
    }
    /// All that it offers under that name.
    template <typename Proxy>
    std::vector<Proxy *> bindEach(const wl_interface &wanted, uint32_t version) const
    {
        std::vector<Proxy *> all;
        for (const Global &global : m_globals) {
            if (void *proxy = bindOne(global, wanted, version))
                all.push_back(static_cast<Proxy *>(proxy));
        }
        return all;
    }
    bool offers(const wl_interface &wanted) const;
    /// Waits until what was asked for has been answered, for two seconds at most.
    void roundtrip();
    /// Puts the requests made so far on their way.
    void flush();

Q_SIGNALS:
    /// The compositor went away, and with it every object that came from it: nothing may be asked of them.
    void lost();

private:
    struct Global
    {
        uint32_t name;
        std::string interface;
        uint32_t version;
    };

    void *bindOne(const Global &global, const wl_interface &wanted, uint32_t version) const;
    void *bindAny(const wl_interface &wanted, uint32_t version) const;
    static void announce(void *self, wl_registry *registry, uint32_t name, const char *interface,
                         uint32_t version);
    static void forget(void *self, wl_registry *registry, uint32_t name);
    void dispatch();

    wl_display *m_display = nullptr;
    wl_registry *m_registry = nullptr;
    std::vector<Global> m_globals;
    wl_seat *m_seat = nullptr;
    bool m_hasKeyboard = false;
    zwlr_data_control_manager_v1 *m_clipboards = nullptr;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
