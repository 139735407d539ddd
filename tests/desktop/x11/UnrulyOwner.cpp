#include "desktop/x11/UnrulyOwner.h"

#include <QTimer>

UnrulyOwner::UnrulyOwner(Manner manner)
    : m_manner(manner),
      m_connection(std::make_unique<X11Connection>()),
      m_window(m_connection->createWindow(0)),
      m_good(m_connection->atoms()["UTF8_STRING"]),
      m_bad(m_connection->atoms()["image/png"]),
      m_formats({m_good, m_bad})
{
    if (manner == Manner::slow)
        m_formats += m_connection->atoms().of({"image/bmp", "image/jpeg", "image/tiff", "TEXT"});
    QObject::connect(m_connection.get(), &X11Connection::eventReceived, m_connection.get(),
                     [this](const xcb_generic_event_t *event) { handle(*event); });
    xcb_set_selection_owner(m_connection->xcb(), m_window, m_connection->atoms()["CLIPBOARD"], XCB_CURRENT_TIME);
    // The ownership stands before anybody asks.
    m_connection->atoms()["ownership stands"];
}

void UnrulyOwner::handle(const xcb_generic_event_t &event)
{
    const uint8_t type = event.response_type & 0x7f;
    if (type == XCB_SELECTION_REQUEST && m_manner != Manner::silent)
        answer(reinterpret_cast<const xcb_selection_request_event_t &>(event));
    if (type != XCB_PROPERTY_NOTIFY)
        return;
    const auto &notify = reinterpret_cast<const xcb_property_notify_event_t &>(event);
    if (notify.state != XCB_PROPERTY_DELETE || notify.atom != m_bad)
        return;
    put(notify.window, m_bad, m_bad, 8, QByteArray(200000, 'x'));
    if (m_manner == Manner::diesHalfway) {
        m_connection->flush();
        m_connection.release()->deleteLater();
    }
}

void UnrulyOwner::answer(const xcb_selection_request_event_t &request)
{
    X11Atoms &atoms = m_connection->atoms();
    xcb_atom_t property = request.property;
    if (request.target == atoms["TARGETS"]) {
        if (m_manner == Manner::refusesTargets)
            property = XCB_ATOM_NONE;
        else
            put(request.requestor, property, XCB_ATOM_ATOM, 32,
                QByteArray(reinterpret_cast<const char *>(m_formats.constData()), m_formats.size() * 4));
    } else if (request.target == m_good || request.target == atoms["TEXT"]) {
        put(request.requestor, property, request.target, 8, "good");
    } else if (!m_formats.contains(request.target)) {
        property = XCB_ATOM_NONE;
    } else if (m_manner == Manner::halfSilent) {
        return;
    } else if (m_manner == Manner::slow) {
        ++m_asked;
        QTimer::singleShot(500, m_connection.get(), [this, request] {
            put(request.requestor, request.property, request.target, 8, "pixels");
            notify(request, request.property);
        });
        return;
    } else {
        const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(m_connection->xcb(), request.requestor, XCB_CW_EVENT_MASK, &events);
        put(request.requestor, property, atoms["INCR"], 32, QByteArray(4, '\x01'));
    }
    notify(request, property);
}

void UnrulyOwner::notify(const xcb_selection_request_event_t &request, xcb_atom_t property)
{
    const xcb_selection_notify_event_t notify{
        XCB_SELECTION_NOTIFY, 0, 0, request.time, request.requestor, request.selection, request.target, property};
    QByteArray message(reinterpret_cast<const char *>(&notify), sizeof notify);
    message.append(32 - message.size(), char(0));
    xcb_send_event(m_connection->xcb(), false, request.requestor, 0, message.constData());
    m_connection->flush();
}

void UnrulyOwner::put(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, uint8_t format,
                      const QByteArray &bytes)
{
    xcb_change_property(m_connection->xcb(), XCB_PROP_MODE_REPLACE, window, property, type, format,
                        static_cast<uint32_t>(bytes.size() / (format / 8)), bytes.constData());
}
