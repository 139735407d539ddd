#pragma once

#include "machine/x11/X11Atoms.h"
#include "machine/x11/XcbReply.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>

#include <xcb/xcb.h>

/// The program's own connection to the X server, apart from the one of the windows; its events arrive on
/// the event loop of the thread.
///
/// Without a server, or once it has gone, every request does nothing and every reply is empty: nobody needs
/// to ask first.
class X11Connection final : public QObject
{
    Q_OBJECT
public:
    /// An empty name is the display of the environment.
    explicit X11Connection(const QByteArray &display = {});
    ~X11Connection() override;
    Q_DISABLE_COPY_MOVE(X11Connection)

    bool isOpen() const { return xcb_connection_has_error(m_xcb) == 0; }
    xcb_connection_t *xcb() const { return m_xcb; }
    xcb_window_t root() const { return m_root; }
    X11Atoms &atoms() { return m_atoms; }
    bool hasExtension(QByteArrayView name) const;

    /// An invisible window to receive events of its own, 0 without a server.
    xcb_window_t createWindow(uint32_t eventMask);
    /// Puts the requests made so far on their way; otherwise they leave before the event loop sleeps.
    void flush() { xcb_flush(m_xcb); }
    /// Handles events here and now until the condition holds; false when the limit passed first.
    bool dispatchUntil(const std::function<bool()> &condition, std::chrono::milliseconds limit);

Q_SIGNALS:
    void eventReceived(const xcb_generic_event_t *event);
    /// The server went away.
    void lost();

private:
    using Event = XcbReply<xcb_generic_event_t>;

    void dispatch(bool readSocket);

    xcb_connection_t *m_xcb;
    xcb_window_t m_root = XCB_WINDOW_NONE;
    X11Atoms m_atoms;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::deque<Event> m_pending;
};
