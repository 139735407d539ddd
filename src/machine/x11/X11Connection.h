#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <chrono>
#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>

#include <xcb/xcb.h>
#include <xcb/xproto.h>

class X11Connection;

struct FreeXcbReply
{
    void operator()(void *reply) const { std::free(reply); }
};

/// What the X server answered, or nothing: the request failed or the server is gone.
template <typename T>
using XcbReply = std::unique_ptr<T, FreeXcbReply>;

/// Takes ownership of an answer, an event or an error that XCB allocated.
template <typename T>
XcbReply<T> adopt(T *reply)
{
    return XcbReply<T>(reply);
}

/// The numbers that the X server gives to names, each asked for once. Without a server the numbers are our
/// own, so that names can still be told apart.
class X11Atoms
{
public:
    explicit X11Atoms(X11Connection &connection);

    xcb_atom_t operator[](const QByteArray &name);
    /// Several names in one round trip.
    QList<xcb_atom_t> of(const QList<QByteArray> &names);
    /// The names of several numbers, in one round trip; empty for a number that is none.
    QList<QByteArray> names(const QList<xcb_atom_t> &atoms);

private:
    void remember(xcb_atom_t atom, const QByteArray &name);

    X11Connection &m_connection;
    QHash<QByteArray, xcb_atom_t> m_atoms;
    QHash<xcb_atom_t, QByteArray> m_names;
};

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

    /// Why the display that the environment names cannot be used, in one sentence for the user; empty when it
    /// can.
    static QString objection();

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

/// The value of a property of a window; without a type when there is none, or none that may be read.
struct WindowProperty
{
    xcb_atom_t type = XCB_ATOM_NONE;
    uint8_t format = 0; ///< the size of a unit: 8, 16 or 32 bits
    QByteArray bytes;
    bool isWhole = true; ///< false when the value was longer than asked for

    static WindowProperty read(X11Connection &connection, xcb_window_t window, xcb_atom_t property,
                               qsizetype maxBytes = 65536);
    /// Reads a property of a window of our own and deletes it, which tells its writer to go on. A value that
    /// is longer than asked for stays.
    static WindowProperty take(X11Connection &connection, xcb_window_t window, xcb_atom_t property,
                               qsizetype maxBytes);

    /// The units of a 32-bit property.
    QList<uint32_t> values() const;
};
