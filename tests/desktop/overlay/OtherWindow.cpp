#include "desktop/overlay/OtherWindow.h"

#include "machine/x11/FocusedWindow.h"
#include "machine/x11/X11Connection.h"

#include <QGuiApplication>
#include <QScreen>

OtherWindow::OtherWindow()
    : m_connection(std::make_unique<X11Connection>()),
      m_window(xcb_generate_id(m_connection->xcb()))
{
}

OtherWindow::OtherWindow(const QRect &geometry, const QByteArray &state) : OtherWindow()
{
    create(geometry);
    if (!state.isEmpty())
        setProperty("_NET_WM_STATE", XCB_ATOM_ATOM, {m_connection->atoms()[state]});
    xcb_map_window(m_connection->xcb(), m_window);
    m_connection->flush();
}

OtherWindow OtherWindow::dock(int height)
{
    const QSize screen = QGuiApplication::primaryScreen()->size();
    OtherWindow window;
    window.create({0, screen.height() - height, screen.width(), height});
    const auto size = static_cast<uint32_t>(height);
    window.setProperty("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                       {window.m_connection->atoms()["_NET_WM_WINDOW_TYPE_DOCK"]});
    window.setProperty("_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL,
                       {0, 0, 0, size, 0, 0, 0, 0, 0, 0, 0, static_cast<uint32_t>(screen.width() - 1)});
    xcb_map_window(window.m_connection->xcb(), window.m_window);
    window.m_connection->flush();
    return window;
}

void OtherWindow::create(const QRect &geometry)
{
    const uint32_t yellow = 0xffff00;
    xcb_create_window(m_connection->xcb(), XCB_COPY_FROM_PARENT, m_window, m_connection->root(),
                      static_cast<int16_t>(geometry.x()), static_cast<int16_t>(geometry.y()),
                      static_cast<uint16_t>(geometry.width()), static_cast<uint16_t>(geometry.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL, &yellow);
    const QByteArray name("other\0Other\0", 12);
    xcb_change_property(m_connection->xcb(), XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        static_cast<uint32_t>(name.size()), name.constData());
}

void OtherWindow::setProperty(const QByteArray &name, xcb_atom_t type, const QList<uint32_t> &values)
{
    xcb_change_property(m_connection->xcb(), XCB_PROP_MODE_REPLACE, m_window, m_connection->atoms()[name], type, 32,
                        static_cast<uint32_t>(values.size()), values.constData());
}

bool OtherWindow::hasFocus()
{
    return FocusedWindow::find(*m_connection) == m_window;
}

xcb_window_t OtherWindow::windowAt(const QPoint &place)
{
    xcb_connection_t *xcb = m_connection->xcb();
    xcb_warp_pointer(xcb, XCB_NONE, m_connection->root(), 0, 0, 0, 0, static_cast<int16_t>(place.x()),
                     static_cast<int16_t>(place.y()));
    const auto reply = adopt(xcb_query_pointer_reply(xcb, xcb_query_pointer(xcb, m_connection->root()), nullptr));
    return reply ? reply->child : xcb_window_t(XCB_WINDOW_NONE);
}

QList<uint32_t> OtherWindow::managedWindows()
{
    return WindowProperty::read(*m_connection, m_connection->root(), m_connection->atoms()["_NET_CLIENT_LIST"])
        .values();
}
