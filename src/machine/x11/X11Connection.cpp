#include "machine/x11/X11Connection.h"

#include <QAbstractEventDispatcher>
#include <QDeadlineTimer>

#include <csignal>
#include <cstring>

#include <poll.h>

using namespace Qt::StringLiterals;

namespace {

// The server numbers from 1 and uses 29 bits.
constexpr xcb_atom_t firstOwnAtom = 0x80000000;

xcb_window_t rootOf(xcb_connection_t *xcb, int screenNumber)
{
    if (xcb_connection_has_error(xcb) != 0)
        return XCB_WINDOW_NONE;
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(xcb));
    for (; screens.rem > 1 && screenNumber > 0; --screenNumber)
        xcb_screen_next(&screens);
    return screens.data->root;
}

WindowProperty get(X11Connection &connection, bool deleting, xcb_window_t window, xcb_atom_t property,
                   qsizetype maxBytes)
{
    WindowProperty result;
    xcb_connection_t *xcb = connection.xcb();
    const auto words = static_cast<uint32_t>(maxBytes / 4 + 1);
    const auto cookie =
        xcb_get_property(xcb, deleting, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, words);
    xcb_generic_error_t *error = nullptr;
    const auto reply = adopt(xcb_get_property_reply(xcb, cookie, &error));
    const auto refusal = adopt(error);
    if (!reply)
        return result;
    result.type = reply->type;
    result.format = reply->format;
    result.bytes = QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                              xcb_get_property_value_length(reply.get()));
    result.isWhole = reply->bytes_after == 0 && result.bytes.size() <= maxBytes;
    return result;
}

} // namespace

X11Atoms::X11Atoms(X11Connection &connection) : m_connection(connection)
{
}

xcb_atom_t X11Atoms::operator[](const QByteArray &name)
{
    return of({name}).constFirst();
}

QList<xcb_atom_t> X11Atoms::of(const QList<QByteArray> &names)
{
    xcb_connection_t *xcb = m_connection.xcb();
    QHash<QByteArray, xcb_intern_atom_cookie_t> asked;
    for (const QByteArray &name : names) {
        if (!m_atoms.contains(name) && !asked.contains(name))
            asked.insert(name, xcb_intern_atom(xcb, false, static_cast<uint16_t>(name.size()), name.data()));
    }
    for (auto it = asked.cbegin(); it != asked.cend(); ++it) {
        if (const auto reply = adopt(xcb_intern_atom_reply(xcb, it.value(), nullptr)))
            remember(reply->atom, it.key());
    }
    QList<xcb_atom_t> atoms;
    for (const QByteArray &name : names) {
        if (!m_atoms.contains(name))
            remember(firstOwnAtom + static_cast<xcb_atom_t>(m_atoms.size()), name);
        atoms.append(m_atoms.value(name));
    }
    return atoms;
}

QList<QByteArray> X11Atoms::names(const QList<xcb_atom_t> &atoms)
{
    xcb_connection_t *xcb = m_connection.xcb();
    QHash<xcb_atom_t, xcb_get_atom_name_cookie_t> asked;
    for (const xcb_atom_t atom : atoms) {
        if (!m_names.contains(atom) && !asked.contains(atom))
            asked.insert(atom, xcb_get_atom_name(xcb, atom));
    }
    for (auto it = asked.cbegin(); it != asked.cend(); ++it) {
        xcb_generic_error_t *error = nullptr;
        const auto reply = adopt(xcb_get_atom_name_reply(xcb, it.value(), &error));
        const auto refusal = adopt(error);
        if (reply)
            remember(it.key(), QByteArray(xcb_get_atom_name_name(reply.get()),
                                          xcb_get_atom_name_name_length(reply.get())));
    }
    QList<QByteArray> names;
    for (const xcb_atom_t atom : atoms)
        names.append(m_names.value(atom));
    return names;
}

void X11Atoms::remember(xcb_atom_t atom, const QByteArray &name)
{
    m_atoms.insert(name, atom);
    m_names.insert(atom, name);
}

X11Connection::X11Connection(const QByteArray &display) : m_xcb(nullptr), m_atoms(*this)
{
    // A server that dies must be an error of the connection, not a signal that ends the program.
    std::signal(SIGPIPE, SIG_IGN);
    int screenNumber = 0;
    m_xcb = xcb_connect(display.isEmpty() ? nullptr : display.constData(), &screenNumber);
    m_root = rootOf(m_xcb, screenNumber);
    if (!isOpen())
        return;
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_xcb), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { dispatch(true); });
    // Waiting for a reply may read events off the socket, which then never wakes the loop for them.
    const QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance();
    for (const auto turn : {&QAbstractEventDispatcher::aboutToBlock, &QAbstractEventDispatcher::awake})
        connect(dispatcher, turn, this, [this] { dispatch(false); });
}

X11Connection::~X11Connection()
{
    m_notifier.reset();
    flush(); // disconnecting would drop what is still on its way
    xcb_disconnect(m_xcb);
}

QString X11Connection::objection()
{
    const QByteArray name = qgetenv("DISPLAY");
    if (name.isEmpty())
        return u"There is no display to run on: neither DISPLAY nor WAYLAND_DISPLAY is set."_s;
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers ? QString() : u"The display %1 does not answer."_s.arg(QString::fromLocal8Bit(name));
}

bool X11Connection::hasExtension(QByteArrayView name) const
{
    const auto cookie = xcb_query_extension(m_xcb, static_cast<uint16_t>(name.size()), name.data());
    const auto reply = adopt(xcb_query_extension_reply(m_xcb, cookie, nullptr));
    return reply && reply->present;
}

xcb_window_t X11Connection::createWindow(uint32_t eventMask)
{
    if (!isOpen())
        return XCB_WINDOW_NONE;
    const xcb_window_t window = xcb_generate_id(m_xcb);
    xcb_create_window(m_xcb, 0, window, m_root, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &eventMask);
    return window;
}

bool X11Connection::dispatchUntil(const std::function<bool()> &condition, std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    while (true) {
        dispatch(true);
        if (condition())
            return true;
        if (!isOpen() || deadline.hasExpired())
            return false;
        pollfd socket{.fd = xcb_get_file_descriptor(m_xcb), .events = POLLIN, .revents = 0};
        poll(&socket, 1, static_cast<int>(deadline.remainingTime()));
    }
}

void X11Connection::dispatch(bool readSocket)
{
    while (true) {
        Event event = adopt(readSocket ? xcb_poll_for_event(m_xcb) : xcb_poll_for_queued_event(m_xcb));
        if (event)
            m_pending.push_back(std::move(event));
        if (m_pending.empty())
            break;
        const Event next = std::move(m_pending.front());
        m_pending.pop_front();
        Q_EMIT eventReceived(next.get());
    }
    flush();
    if (isOpen() || !m_notifier)
        return;
    m_notifier.release()->deleteLater(); // it may be the one that is calling
    Q_EMIT lost();
}

WindowProperty WindowProperty::read(X11Connection &connection, xcb_window_t window, xcb_atom_t property,
                                    qsizetype maxBytes)
{
    return get(connection, false, window, property, maxBytes);
}

WindowProperty WindowProperty::take(X11Connection &connection, xcb_window_t window, xcb_atom_t property,
                                    qsizetype maxBytes)
{
    return get(connection, true, window, property, maxBytes);
}

QList<uint32_t> WindowProperty::values() const
{
    QList<uint32_t> values(format == 32 ? bytes.size() / 4 : 0);
    if (!values.isEmpty())
        std::memcpy(values.data(), bytes.constData(), static_cast<std::size_t>(values.size()) * 4);
    return values;
}
