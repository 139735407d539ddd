#include "machine/x11/Compositor.h"

#include "machine/x11/X11Connection.h"
#include "machine/x11/XcbReply.h"

#include <xcb/xfixes.h>

Compositor::Compositor(X11Connection &connection)
    : m_connection(connection),
      m_selection(connection.atoms()["_NET_WM_CM_S0"])
{
    xcb_connection_t *xcb = connection.xcb();
    // The extension wants to be greeted on every connection before it serves it.
    const auto greeting = xcb_xfixes_query_version(xcb, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
    if (const auto version = adopt(xcb_xfixes_query_version_reply(xcb, greeting, nullptr))) {
        m_selectionNotify = static_cast<uint8_t>(xcb_get_extension_data(xcb, &xcb_xfixes_id)->first_event +
                                                 XCB_XFIXES_SELECTION_NOTIFY);
        xcb_xfixes_select_selection_input(xcb, connection.root(), m_selection,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        connect(&connection, &X11Connection::eventReceived, this,
                [this](const xcb_generic_event_t *event) { handle(*event); });
    }
    const auto asked = xcb_get_selection_owner(xcb, m_selection);
    const auto owner = adopt(xcb_get_selection_owner_reply(xcb, asked, nullptr));
    m_isRunning = owner && owner->owner != XCB_WINDOW_NONE;
}

void Compositor::handle(const xcb_generic_event_t &event)
{
    if ((event.response_type & 0x7f) != m_selectionNotify)
        return;
    const auto &notice = reinterpret_cast<const xcb_xfixes_selection_notify_event_t &>(event);
    const bool isRunning = notice.owner != XCB_WINDOW_NONE;
    if (notice.selection != m_selection || isRunning == m_isRunning)
        return;
    m_isRunning = isRunning;
    Q_EMIT changed();
}
