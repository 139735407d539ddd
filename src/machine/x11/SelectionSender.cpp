#include "machine/x11/SelectionSender.h"

#include "machine/x11/X11Connection.h"

#include <algorithm>
#include <array>
#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr qsizetype pieceBytes = 256 * 1024; // below what any server takes in one request

void write(const X11Connection &connection, xcb_window_t window, xcb_atom_t property,
           const SelectionData &data, QByteArrayView bytes)
{
    const auto units = static_cast<uint32_t>(bytes.size() / (data.format / 8));
    xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, window, property, data.type, data.format,
                        units, bytes.data());
}

void listen(const X11Connection &connection, xcb_window_t window, uint32_t events)
{
    xcb_change_window_attributes(connection.xcb(), window, XCB_CW_EVENT_MASK, &events);
}

} // namespace

SelectionSender::SelectionSender(X11Connection &connection) : m_connection(connection)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(10s);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        while (!m_transfers.empty())
            forget(m_transfers.front().requestor);
    });
    connect(&connection, &X11Connection::eventReceived, this,
            [this](const xcb_generic_event_t *event) { handle(*event); });
}

void SelectionSender::send(xcb_window_t requestor, xcb_atom_t property, const SelectionData &data)
{
    const qsizetype limit =
        std::min(pieceBytes, qsizetype(xcb_get_maximum_request_length(m_connection.xcb())) * 4 - 64);
    if (data.bytes.size() <= limit) {
        write(m_connection, requestor, property, data, data.bytes);
        return;
    }
    listen(m_connection, requestor, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const auto size = static_cast<uint32_t>(data.bytes.size());
    xcb_change_property(m_connection.xcb(), XCB_PROP_MODE_REPLACE, requestor, property,
                        m_connection.atoms()["INCR"], 32, 1, &size);
    m_transfers.push_back({requestor, property, data});
    m_patience.start();
}

void SelectionSender::handle(const xcb_generic_event_t &event)
{
    const uint8_t type = event.response_type & 0x7f;
    if (m_transfers.empty())
        return;
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto &notify = reinterpret_cast<const xcb_property_notify_event_t &>(event);
        if (notify.state == XCB_PROPERTY_DELETE)
            sendNextPiece(notify.window, notify.atom);
    } else if (type == XCB_DESTROY_NOTIFY) {
        forget(reinterpret_cast<const xcb_destroy_notify_event_t &>(event).window);
    }
}

void SelectionSender::sendNextPiece(xcb_window_t requestor, xcb_atom_t property)
{
    const auto transfer = std::ranges::find_if(m_transfers, [&](const Transfer &candidate) {
        return candidate.requestor == requestor && candidate.property == property;
    });
    if (transfer == m_transfers.end())
        return;
    m_patience.start();
    const qsizetype size = std::min(pieceBytes, transfer->data.bytes.size() - transfer->sent);
    const QByteArrayView piece = QByteArrayView(transfer->data.bytes).sliced(transfer->sent, size);
    write(m_connection, requestor, property, transfer->data, piece);
    transfer->sent += size;
    if (!piece.isEmpty())
        return;
    // The empty piece was the end.
    m_transfers.erase(transfer);
    if (std::ranges::count(m_transfers, requestor, &Transfer::requestor) == 0)
        forget(requestor);
}

void SelectionSender::forget(xcb_window_t requestor)
{
    std::erase_if(m_transfers, [&](const Transfer &transfer) { return transfer.requestor == requestor; });
    listen(m_connection, requestor, XCB_EVENT_MASK_NO_EVENT);
    if (m_transfers.empty())
        m_patience.stop();
}
