#include "machine/x11/X11Connection.h"

#include <QAbstractEventDispatcher>
#include <QDeadlineTimer>

#include <csignal>

#include <poll.h>

namespace {

xcb_window_t rootOf(xcb_connection_t *xcb, int screenNumber)
{
    if (xcb_connection_has_error(xcb) != 0)
        return XCB_WINDOW_NONE;
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(xcb));
    for (; screens.rem > 1 && screenNumber > 0; --screenNumber)
        xcb_screen_next(&screens);
    return screens.data->root;
}

} // namespace

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
