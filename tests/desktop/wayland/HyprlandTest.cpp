#include "machine/hyprland/HyprlandKeyTaps.h"
#include "machine/wayland/WaylandConnection.h"

#include <QDir>
#include <QFile>
#include <QMutex>
#include <QTemporaryDir>
#include <QTest>

#include <cstring>
#include <map>
#include <thread>

#include <hyprland-global-shortcuts-v1-server.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <wayland-server-core.h>

using namespace Qt::StringLiterals;

namespace {

constexpr KeyChord superSpace{.keyCode = 49, .flags = KeyFlags::fn};
constexpr KeyChord escape{.keyCode = 53, .flags = 0};

/// A compositor that has nothing but the shortcuts and the two sockets, on a thread of its own.
class StandIn
{
public:
    QByteArray binds = "[]", system = "{}";

    StandIn()
    {
        qputenv("XDG_RUNTIME_DIR", m_folder.path().toLocal8Bit());
        qputenv("HYPRLAND_INSTANCE_SIGNATURE", "one");
        QDir(m_folder.path()).mkpath(u"hypr/one"_s);
        m_display = wl_display_create();
        qputenv("WAYLAND_DISPLAY", wl_display_add_socket_auto(m_display));
        wl_global_create(m_display, &hyprland_global_shortcuts_manager_v1_interface, 1, this, bind);
        wl_event_loop *loop = wl_display_get_event_loop(m_display);
        m_sources[0] = wl_event_loop_add_fd(loop, listening("hypr/one/.socket.sock"), WL_EVENT_READABLE, answer, this);
        m_events = listening("hypr/one/.socket2.sock");
        if (pipe(m_orders) != 0)
            qFatal("no pipe");
        m_sources[1] = wl_event_loop_add_fd(loop, m_orders[0], WL_EVENT_READABLE, obey, this);
        m_thread = std::thread([this] { wl_display_run(m_display); });
    }
    ~StandIn() { end(); }
    Q_DISABLE_COPY_MOVE(StandIn)

    void end()
    {
        if (!m_thread.joinable())
            return;
        order('q');
        m_thread.join();
        for (wl_event_source *source : m_sources)
            wl_event_source_remove(source);
        wl_display_destroy_clients(m_display);
        wl_display_destroy(m_display);
        for (const int descriptor : {m_command, m_events, m_listener, m_orders[0], m_orders[1]})
            ::close(descriptor);
    }
    /// t, T, c, C: presses and releases what toggles, and what cancels; r: reads its configuration again.
    void order(char what) { QVERIFY(write(m_orders[1], &what, 1) == 1); }
    QByteArrayList taken()
    {
        const QMutexLocker lock(&m_mutex);
        return std::exchange(m_taken, {});
    }

private:
    int listening(const char *name)
    {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        std::strncpy(address.sun_path, m_folder.filePath(QString::fromLatin1(name)).toLocal8Bit().constData(),
                     sizeof address.sun_path - 1);
        const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (::bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
            listen(descriptor, 8) != 0)
            qFatal("no socket");
        m_command = m_command < 0 ? descriptor : m_command;
        return descriptor;
    }
    static void bind(wl_client *client, void *self, uint32_t version, uint32_t id)
    {
        static const struct hyprland_global_shortcuts_manager_v1_interface manager
        {
            .register_shortcut =
                [](wl_client *asker, wl_resource *on, uint32_t shortcut, const char *name, const char *, const char *,
                   const char *) {
                    static const struct hyprland_global_shortcut_v1_interface requests
                    {
                        .destroy = [](wl_client *, wl_resource *resource) { wl_resource_destroy(resource); }
                    };
                    auto *standIn = static_cast<StandIn *>(wl_resource_get_user_data(on));
                    wl_resource *made = wl_resource_create(asker, &hyprland_global_shortcut_v1_interface, 1, shortcut);
                    wl_resource_set_implementation(made, &requests, nullptr, nullptr);
                    standIn->m_shortcuts[name[0]] = made;
                },
            .destroy = [](wl_client *, wl_resource *resource) { wl_resource_destroy(resource); }
        };
        wl_resource *resource =
            wl_resource_create(client, &hyprland_global_shortcuts_manager_v1_interface, int(version), id);
        wl_resource_set_implementation(resource, &manager, self, nullptr);
    }
    static int answer(int descriptor, uint32_t, void *data)
    {
        auto *self = static_cast<StandIn *>(data);
        const int asker = accept(descriptor, nullptr, nullptr);
        char bytes[1024];
        const QByteArray request(bytes, std::max<ssize_t>(recv(asker, bytes, sizeof bytes, 0), 0));
        const QMutexLocker lock(&self->m_mutex);
        if (!request.startsWith("j/"))
            self->m_taken.append(request);
        const QByteArray reply = request == "j/binds" ? self->binds : request == "j/systeminfo" ? self->system : "ok";
        send(asker, reply.constData(), size_t(reply.size()), MSG_NOSIGNAL);
        ::close(asker);
        return 0;
    }
    static int obey(int descriptor, uint32_t, void *data)
    {
        auto *self = static_cast<StandIn *>(data);
        char what = 0;
        if (read(descriptor, &what, 1) != 1)
            return 0;
        if (what == 'q')
            wl_display_terminate(self->m_display);
        else if (what == 'r') {
            self->m_listener = accept(self->m_events, nullptr, nullptr);
            constexpr QByteArrayView told = "workspace>>2\nconfigreloaded>>\n";
            send(self->m_listener, told.data(), size_t(told.size()), MSG_NOSIGNAL);
        } else if (what >= 'a')
            hyprland_global_shortcut_v1_send_pressed(self->m_shortcuts[what], 0, 0, 0);
        else
            hyprland_global_shortcut_v1_send_released(self->m_shortcuts[char(what + 32)], 0, 0, 0);
        wl_display_flush_clients(self->m_display);
        return 0;
    }

    QTemporaryDir m_folder;
    wl_display *m_display = nullptr;
    wl_event_source *m_sources[2] = {};
    int m_command = -1, m_events = -1, m_listener = -1;
    int m_orders[2] = {-1, -1};
    std::map<char, wl_resource *> m_shortcuts;
    QMutex m_mutex;
    QByteArrayList m_taken;
    std::thread m_thread;
};

} // namespace

class HyprlandTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void keysAreBoundWhileTheyAreWatched()
    {
        for (const bool isLua : {false, true}) {
            const auto bound = [&](const QByteArray &keys, const QByteArray &luaKeys, const QByteArray &name) {
                return isLua ? "eval hl.bind(\"" + luaKeys + "\", hl.dsp.global(\"app.sayvane.Sayvane:" + name + "\"))"
                             : "keyword bind " + keys + ",global,app.sayvane.Sayvane:" + name;
            };
            const auto unbound = [&](const QByteArray &keys, const QByteArray &luaKeys) {
                return isLua ? "eval hl.unbind(\"" + luaKeys + "\")" : "keyword unbind " + keys;
            };
            StandIn hyprland;
            QByteArrayList all;
            hyprland.system = isLua ? R"({"configProvider":"lua"})" : "{}";
            hyprland.binds =
                R"([{"modmask":64,"submap":"","key":"Return","keycode":0,"dispatcher":"exec","arg":"kitty"},
                                 {"modmask":64,"submap":"resize","key":"space","keycode":0,"dispatcher":"exec","arg":"x"}])";
            WaylandConnection wayland;
            HyprlandKeyTaps taps(wayland);
            QVERIFY(taps.isOpen());
            QList<KeyEvent> events;
            std::unique_ptr<KeyTap> tap;
            QVERIFY(QTest::qWaitFor([&] {
                tap = taps.install(std::span(&superSpace, 1), [&](const KeyEvent &event) {
                    events.append(event);
                    return KeyVerdict::swallow;
                });
                return tap != nullptr;
            }));
            QTRY_COMPARE(all += hyprland.taken(),
                         QByteArrayList({bound("SUPER,code:65", "SUPER + code:65", "toggle")}));
            all.clear();
            hyprland.order('c'); // nothing is being recorded
            hyprland.order('t');
            hyprland.order('T');
            QTRY_COMPARE(events.size(), 2);
            QVERIFY(events[0].type == KeyEventType::keyDown && events[1].type == KeyEventType::keyUp);
            QVERIFY(events[0].keyCode == 49 && events[0].flags == KeyFlags::fn);

            const KeyChord both[] = {superSpace, escape};
            tap->watch(both);
            QTRY_COMPARE(all += hyprland.taken(), QByteArrayList({bound(",code:9", "code:9", "cancel")}));
            all.clear();
            hyprland.order('c');
            QTRY_COMPARE(events.size(), 3);
            QCOMPARE(events[2].keyCode, qint64(53));
            tap->watch(std::span(both).first(1));
            QTRY_COMPARE(all += hyprland.taken(), QByteArrayList({unbound(",code:9", "code:9")}));
            all.clear();

            hyprland.order('r');
            QTRY_COMPARE(all += hyprland.taken(),
                         QByteArrayList({bound("SUPER,code:65", "SUPER + code:65", "toggle")}));
            all.clear();
            tap.reset();
            QTRY_COMPARE(all += hyprland.taken(), QByteArrayList({unbound("SUPER,code:65", "SUPER + code:65")}));
            all.clear();
            hyprland.end();
            QTRY_VERIFY(!taps.isOpen());
            QVERIFY(!taps.install(std::span(&superSpace, 1), {}));
        }
    }

    void aKeyOfThePersonStaysTheirs()
    {
        StandIn hyprland;
        QByteArrayList all;
        hyprland.binds = R"([{"modmask":64,"submap":"","key":"Space","keycode":0,"dispatcher":"exec","arg":"wofi"},
                             {"modmask":0,"submap":"","key":"","keycode":9,"dispatcher":"exec","arg":"lock"}])";
        WaylandConnection wayland;
        HyprlandKeyTaps taps(wayland);
        QTRY_VERIFY(!taps.install(std::span(&superSpace, 1), {}) && !taps.holder().isEmpty());
        QCOMPARE(taps.holder(), u"Hyprland (exec wofi)"_s);
        constexpr KeyChord free{.keyCode = 49, .flags = KeyFlags::option};
        std::unique_ptr<KeyTap> tap;
        QVERIFY(QTest::qWaitFor([&] { return (tap = taps.install(std::span(&free, 1), {})) != nullptr; }));
        QVERIFY(taps.holder().isEmpty());
        const KeyChord both[] = {free, escape};
        tap->watch(both);
        tap->watch(std::span(both).first(1));
        QTRY_COMPARE(all += hyprland.taken(),
                     QByteArrayList({"keyword bind ALT,code:65,global,app.sayvane.Sayvane:toggle"}));
        all.clear();
    }
};

QTEST_GUILESS_MAIN(HyprlandTest)
#include "HyprlandTest.moc"
