#include "machine/x11/DesktopSettings.h"

#include "machine/x11/X11Connection.h"

#include <QtEndian>

namespace {

/// Takes values off the front; what is not there reads as nothing and ends the reading.
class Reader
{
public:
    explicit Reader(QByteArrayView bytes) : m_rest(bytes) {}

    template <typename Number>
    Number number()
    {
        const QByteArrayView bytes = take(sizeof(Number));
        if (bytes.isEmpty())
            return 0;
        return m_isBigEndian ? qFromBigEndian<Number>(bytes.data()) : qFromLittleEndian<Number>(bytes.data());
    }
    QByteArrayView take(qsizetype count)
    {
        if (count > m_rest.size()) {
            m_rest = {};
            return {};
        }
        const QByteArrayView taken = m_rest.first(count);
        m_rest = m_rest.sliced(count);
        return taken;
    }
    /// A text and what fills it up to a multiple of four.
    QByteArrayView padded(qsizetype count)
    {
        const QByteArrayView taken = take(count);
        take((4 - count % 4) % 4);
        return taken;
    }
    void readBigEndian(bool isBigEndian) { m_isBigEndian = isBigEndian; }
    bool isAtEnd() const { return m_rest.isEmpty(); }

private:
    QByteArrayView m_rest;
    bool m_isBigEndian = false;
};

enum class Type : uint8_t { integer, string, color };

} // namespace

DesktopSettings DesktopSettings::read(X11Connection &connection)
{
    const auto asked = xcb_get_selection_owner(connection.xcb(), connection.atoms()["_XSETTINGS_S0"]);
    const auto owner = adopt(xcb_get_selection_owner_reply(connection.xcb(), asked, nullptr));
    if (!owner || owner->owner == XCB_WINDOW_NONE)
        return DesktopSettings({});
    return DesktopSettings(
        WindowProperty::read(connection, owner->owner, connection.atoms()["_XSETTINGS_SETTINGS"]).bytes);
}

std::optional<int32_t> DesktopSettings::integer(QByteArrayView name) const
{
    Reader reader(m_property);
    reader.readBigEndian(reader.number<uint8_t>() == 1);
    reader.take(3 + sizeof(uint32_t)); // unused, and the serial number of the property
    reader.number<uint32_t>();         // how many settings follow; their end tells as well
    while (!reader.isAtEnd()) {
        const auto type = static_cast<Type>(reader.number<uint8_t>());
        reader.take(1);
        const bool isWanted = reader.padded(reader.number<uint16_t>()) == name;
        reader.take(sizeof(uint32_t)); // when it last changed
        if (type == Type::string) {
            reader.padded(reader.number<uint32_t>());
        } else if (type == Type::color) {
            reader.take(4 * sizeof(uint16_t));
        } else if (type == Type::integer) {
            const QByteArrayView value = reader.take(sizeof(int32_t));
            if (isWanted && !value.isEmpty())
                return m_property.front() == 1 ? qFromBigEndian<int32_t>(value.data())
                                               : qFromLittleEndian<int32_t>(value.data());
        } else {
            break;
        }
    }
    return std::nullopt;
}
