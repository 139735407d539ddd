#include "machine/x11/SelectionOwner.h"

#include "machine/x11/SelectionSender.h"
#include "machine/x11/X11Connection.h"

#include <algorithm>

namespace {

/// Asks to be told of every change of owner; returns the event's number, 0 when it will not come.
uint8_t watchOwner(X11Connection &connection, xcb_window_t window, xcb_atom_t selection)
{
    xcb_connection_t *xcb = connection.xcb();
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(xcb, &xcb_xfixes_id);
    if (!extension || !extension->present)
        return 0;
    const auto cookie = xcb_xfixes_query_version(xcb, 5, 0);
    adopt(xcb_xfixes_query_version_reply(xcb, cookie, nullptr));
    xcb_xfixes_select_selection_input(xcb, window, selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    return extension->first_event + XCB_XFIXES_SELECTION_NOTIFY;
}

QByteArray bytesOf(const QList<uint32_t> &values)
{
    return {reinterpret_cast<const char *>(values.constData()), values.size() * 4};
}

} // namespace

SelectionOwner::SelectionOwner(X11Connection &connection, SelectionSender &sender,
                               const QByteArray &selection)
    : m_connection(connection),
      m_sender(sender),
      m_selection(connection.atoms()[selection]),
      m_window(connection.createWindow(XCB_EVENT_MASK_NO_EVENT)),
      m_ownerNotify(watchOwner(connection, m_window, m_selection))
{
    connect(&connection, &X11Connection::eventReceived, this,
            [this](const xcb_generic_event_t *event) { handle(*event); });
}

void SelectionOwner::own(SelectionContents contents)
{
    m_contents = std::move(contents);
    m_isOwner = !m_contents.isEmpty();
    ++m_changeCount;
    // The server puts in its own time, which the notification of this change brings.
    const auto cookie =
        xcb_set_selection_owner(m_connection.xcb(), m_isOwner ? m_window : xcb_window_t(XCB_WINDOW_NONE),
                                m_selection, XCB_CURRENT_TIME);
    m_lastTake = cookie.sequence;
    m_isTakeUnconfirmed = true;
    // The keys that make others ask for it travel on another connection: the server is to know before them.
    adopt(xcb_get_input_focus_reply(m_connection.xcb(), xcb_get_input_focus(m_connection.xcb()), nullptr));
}

void SelectionOwner::handle(const xcb_generic_event_t &event)
{
    const uint8_t type = event.response_type & 0x7f;
    if (type == XCB_SELECTION_REQUEST) {
        const auto &request = reinterpret_cast<const xcb_selection_request_event_t &>(event);
        if (request.owner == m_window)
            answer(request);
    } else if (m_ownerNotify != 0 && type == m_ownerNotify) {
        const auto &notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t &>(event);
        if (notify.window == m_window)
            ownerChanged(event.full_sequence, notify);
    }
}

void SelectionOwner::ownerChanged(uint32_t sequence, const xcb_xfixes_selection_notify_event_t &notify)
{
    // An event bears the number of the last request of ours that the server had seen. What happened before
    // our own change is already replaced, and the first one from there on is our own.
    if (m_isTakeUnconfirmed) {
        if (static_cast<int32_t>(sequence - m_lastTake) < 0)
            return Q_EMIT changedHands(sequence, notify.owner);
        m_isTakeUnconfirmed = false;
        m_ownedSince = notify.selection_timestamp;
        return;
    }
    ++m_changeCount;
    m_isOwner = false;
    m_contents.clear();
    Q_EMIT changedHands(sequence, notify.owner);
}

void SelectionOwner::answer(const xcb_selection_request_event_t &request)
{
    const bool isOfEarlierOwner =
        request.time != XCB_CURRENT_TIME && static_cast<int32_t>(request.time - m_ownedSince) < 0;
    // Programs from before the conventions name no property and expect the target's name.
    const xcb_atom_t property = request.property == XCB_ATOM_NONE ? request.target : request.property;
    const bool isDone =
        m_isOwner && !isOfEarlierOwner && convert(request.requestor, request.target, property);
    const xcb_selection_notify_event_t notify{
        .response_type = XCB_SELECTION_NOTIFY,
        .pad0 = 0,
        .sequence = 0,
        .time = request.time,
        .requestor = request.requestor,
        .selection = request.selection,
        .target = request.target,
        .property = isDone ? property : xcb_atom_t(XCB_ATOM_NONE),
    };
    QByteArray message(reinterpret_cast<const char *>(&notify), sizeof notify);
    message.append(32 - message.size(), char(0)); // the size of every event
    xcb_send_event(m_connection.xcb(), false, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   message.constData());
}

bool SelectionOwner::convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property)
{
    X11Atoms &atoms = m_connection.atoms();
    if (target == atoms["TARGETS"]) {
        m_sender.send(requestor, property, {target, XCB_ATOM_ATOM, 32, targets()});
        return true;
    }
    if (target == atoms["TIMESTAMP"]) {
        m_sender.send(requestor, property, {target, XCB_ATOM_INTEGER, 32, bytesOf({m_ownedSince})});
        return true;
    }
    if (target == atoms["SAVE_TARGETS"]) { // asks for nothing; being able to answer is the point
        m_sender.send(requestor, property, {target, atoms["NULL"], 32, {}});
        return true;
    }
    if (target == atoms["MULTIPLE"])
        return convertMultiple(requestor, property);
    const auto data = std::ranges::find(m_contents, target, &SelectionData::target);
    if (data == m_contents.cend())
        return false;
    if (target != atoms["x-kde-passwordManagerHint"])
        ++m_readCount;
    m_sender.send(requestor, property, *data);
    return true;
}

bool SelectionOwner::convertMultiple(xcb_window_t requestor, xcb_atom_t property)
{
    QList<uint32_t> pairs = WindowProperty::read(m_connection, requestor, property).values();
    if (pairs.isEmpty() || pairs.size() % 2 != 0)
        return false;
    const xcb_atom_t multiple = m_connection.atoms()["MULTIPLE"];
    for (qsizetype i = 0; i < pairs.size(); i += 2) {
        if (pairs[i] == multiple || !convert(requestor, pairs[i], pairs[i + 1]))
            pairs[i + 1] = XCB_ATOM_NONE;
    }
    const xcb_atom_t pairType = m_connection.atoms()["ATOM_PAIR"];
    m_sender.send(requestor, property, {multiple, pairType, 32, bytesOf(pairs)});
    return true;
}

QByteArray SelectionOwner::targets() const
{
    QList<uint32_t> targets = m_connection.atoms().of({"TARGETS", "TIMESTAMP", "MULTIPLE", "SAVE_TARGETS"});
    for (const SelectionData &data : m_contents)
        targets.append(data.target);
    return bytesOf(targets);
}
