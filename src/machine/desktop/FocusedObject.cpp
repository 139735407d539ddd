#include "machine/desktop/FocusedObject.h"

#include <QDeadlineTimer>
#include <QList>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

// An answer that comes later than the keystroke is of no use.
constexpr auto timeLimit = 45ms;

// Roles and states of the protocol, by their numbers.
constexpr uint roleTerminal = 60;
constexpr quint64 stateActive = quint64{1} << 1;
constexpr quint64 stateFocused = quint64{1} << 12;
constexpr quint64 stateShowing = quint64{1} << 25;
constexpr quint64 stateManagesDescendants = quint64{1} << 31;

/// What only holds other objects. Tables, trees, icons and menus, which would have to make up thousands, are
/// not looked into.
bool isContainer(uint role)
{
    static constexpr std::array<uint, 15> containers{
        16, // dialog
        20, // filler
        23, // frame
        28, // internal frame
        36, // option pane
        37, // page tab
        38, // page tab list
        39, // panel
        46, // root pane
        49, // scroll pane
        53, // split pane
        68, // viewport
        85, // section
        95, // web document
        99, // grouping
    };
    return std::ranges::find(containers, role) != containers.end();
}

struct Object
{
    QByteArray bus;
    QByteArray path;
};

/// One question to the programs on the bus, with an end in time.
class Question
{
public:
    Question(GDBusConnection *connection, GCancellable *end) : m_connection(connection), m_end(end) {}

    bool isTerminal(qint64 pid) const
    {
        for (const Object &program :
             children({"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"})) {
            if (pidOf(program) != pid)
                continue;
            for (const Object &window : children(program)) {
                if (states(window) & stateActive)
                    return isTerminalFocusedIn(window);
            }
        }
        return false;
    }

private:
    bool isTerminalFocusedIn(const Object &window) const
    {
        QList<Object> waiting{window};
        while (!waiting.isEmpty() && !m_limit.hasExpired()) {
            for (const Object &child : children(waiting.takeFirst())) {
                const quint64 state = states(child);
                if (state & stateFocused)
                    return role(child) == roleTerminal;
                if ((state & stateShowing) && !(state & stateManagesDescendants) && isContainer(role(child)))
                    waiting.append(child);
            }
        }
        return false;
    }

    QList<Object> children(const Object &object) const
    {
        QList<Object> result;
        const auto reply = ask(object, "GetChildren", "(a(so))");
        if (!reply)
            return result;
        GVariantIter *list = nullptr;
        g_variant_get(reply.get(), "(a(so))", &list);
        const char *bus = nullptr;
        const char *path = nullptr;
        while (g_variant_iter_next(list, "(&s&o)", &bus, &path))
            result.append(Object{bus, path});
        g_variant_iter_free(list);
        return result;
    }

    quint64 states(const Object &object) const
    {
        const auto reply = ask(object, "GetState", "(au)");
        if (!reply)
            return 0;
        const GlibPointer<GVariant> words(g_variant_get_child_value(reply.get(), 0));
        quint64 states = 0;
        for (gsize i = 0; i < std::min<gsize>(g_variant_n_children(words.get()), 2); ++i) {
            const GlibPointer<GVariant> word(g_variant_get_child_value(words.get(), i));
            states |= quint64{g_variant_get_uint32(word.get())} << (32 * i);
        }
        return states;
    }

    uint role(const Object &object) const { return number(ask(object, "GetRole", "(u)")); }

    qint64 pidOf(const Object &program) const
    {
        return number(call({"org.freedesktop.DBus", "/org/freedesktop/DBus"}, "org.freedesktop.DBus",
                           "GetConnectionUnixProcessID", g_variant_new("(s)", program.bus.constData()),
                           "(u)"));
    }

    static uint number(const GlibPointer<GVariant> &reply)
    {
        guint32 value = 0;
        if (reply)
            g_variant_get(reply.get(), "(u)", &value);
        return value;
    }

    GlibPointer<GVariant> ask(const Object &object, const char *method, const char *answer) const
    {
        return call(object, "org.a11y.atspi.Accessible", method, nullptr, answer);
    }

    GlibPointer<GVariant> call(const Object &object, const char *interface, const char *method,
                               GVariant *arguments, const char *answer) const
    {
        const int milliseconds = std::max(1, static_cast<int>(m_limit.remainingTime()));
        return GlibPointer<GVariant>(g_dbus_connection_call_sync(
            m_connection, object.bus.constData(), object.path.constData(), interface, method, arguments,
            G_VARIANT_TYPE(answer), G_DBUS_CALL_FLAGS_NO_AUTO_START, milliseconds, m_end, nullptr));
    }

    GDBusConnection *m_connection;
    GCancellable *m_end;
    QDeadlineTimer m_limit{timeLimit};
};

bool isTerminalFocused(const QByteArray &busAddress, qint64 pid, GCancellable *end)
{
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    const GlibPointer<GDBusConnection> connection(
        g_dbus_connection_new_for_address_sync(busAddress.constData(), flags, nullptr, end, nullptr));
    if (!connection)
        return false;
    const bool result = Question(connection.get(), end).isTerminal(pid);
    g_dbus_connection_close_sync(connection.get(), end, nullptr);
    return result;
}

} // namespace

FocusedObject::FocusedObject() : m_end(g_cancellable_new()), m_context(std::make_unique<QObject>())
{
    m_context->moveToThread(&m_thread);
    m_thread.setObjectName("focus");
}

FocusedObject::~FocusedObject()
{
    g_cancellable_cancel(m_end.get());
    m_thread.quit();
    m_thread.wait();
}

void FocusedObject::ask(const QByteArray &busAddress, qint64 pid)
{
    m_terminalOf = 0;
    if (busAddress.isEmpty() || pid <= 0 || m_isAsking.exchange(true))
        return;
    if (!m_thread.isRunning())
        m_thread.start();
    const auto run = [this, busAddress, pid] {
        m_terminalOf = isTerminalFocused(busAddress, pid, m_end.get()) ? pid : 0;
        m_isAsking = false;
    };
    QMetaObject::invokeMethod(m_context.get(), run, Qt::QueuedConnection);
}
