#include "machine/x11/FocusedWindow.h"

#include "machine/x11/X11Connection.h"

#include <QList>

using namespace Qt::StringLiterals;

namespace {

bool hasClass(X11Connection &connection, xcb_window_t window)
{
    return WindowProperty::read(connection, window, XCB_ATOM_WM_CLASS).type != XCB_ATOM_NONE;
}

xcb_window_t parentOf(const X11Connection &connection, xcb_window_t window)
{
    const auto cookie = xcb_query_tree(connection.xcb(), window);
    xcb_generic_error_t *error = nullptr;
    const auto reply = adopt(xcb_query_tree_reply(connection.xcb(), cookie, &error));
    const auto refusal = adopt(error);
    return reply ? reply->parent : xcb_window_t(XCB_WINDOW_NONE);
}

/// The input focus may be on a nameless child of the window that bears the name.
xcb_window_t inputFocus(X11Connection &connection)
{
    const auto cookie = xcb_get_input_focus(connection.xcb());
    const auto reply = adopt(xcb_get_input_focus_reply(connection.xcb(), cookie, nullptr));
    xcb_window_t window = reply ? reply->focus : xcb_window_t(XCB_WINDOW_NONE);
    while (window > XCB_INPUT_FOCUS_POINTER_ROOT && !hasClass(connection, window))
        window = parentOf(connection, window);
    return window;
}

qint64 pidOf(X11Connection &connection, xcb_window_t window)
{
    return WindowProperty::read(connection, window, connection.atoms()["_NET_WM_PID"]).values().value(0);
}

} // namespace

xcb_window_t FocusedWindow::find(X11Connection &connection)
{
    const QList<uint32_t> active =
        WindowProperty::read(connection, connection.root(), connection.atoms()["_NET_ACTIVE_WINDOW"])
            .values();
    const bool isKnown = !active.isEmpty() && active.first() != XCB_WINDOW_NONE;
    return isKnown ? active.first() : inputFocus(connection);
}

FocusedWindow FocusedWindow::read(X11Connection &connection)
{
    const xcb_window_t window = find(connection);
    if (window <= XCB_INPUT_FOCUS_POINTER_ROOT)
        return {};
    const QList<QByteArray> names =
        WindowProperty::read(connection, window, XCB_ATOM_WM_CLASS).bytes.split('\0');
    const qint64 pid = pidOf(connection, window);
    return {{.instance = names.value(0), .className = names.value(1), .pid = pid, .command = commandOf(pid)}};
}
