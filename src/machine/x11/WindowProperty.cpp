#include "machine/x11/WindowProperty.h"

#include "machine/x11/X11Connection.h"
#include "machine/x11/XcbReply.h"

#include <cstring>

namespace {

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
