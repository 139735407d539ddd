#include "machine/x11/WorkArea.h"

#include "machine/x11/WindowProperty.h"
#include "machine/x11/X11Connection.h"
#include "machine/x11/XcbReply.h"

#include <array>

namespace {

constexpr qsizetype partialLength = 12;

/// A dock covers a band along one side of the root window.
struct Band
{
    Qt::Edge edge;
    QRect rect;
};

std::array<Band, 4> bandsOf(const WorkArea::Strut &strut, const QSize &root)
{
    const auto at = [&](qsizetype index) { return static_cast<int>(strut[index]); };
    const auto rect = [](int left, int top, int right, int bottom) {
        return QRect(QPoint(left, top), QPoint(right, bottom));
    };
    const int right = root.width() - 1;
    const int bottom = root.height() - 1;
    return {{{Qt::LeftEdge, rect(0, at(4), at(0) - 1, at(5))},
             {Qt::RightEdge, rect(right - at(1) + 1, at(6), right, at(7))},
             {Qt::TopEdge, rect(at(8), 0, at(9), at(2) - 1)},
             {Qt::BottomEdge, rect(at(10), bottom - at(3) + 1, at(11), bottom)}}};
}

QRect without(QRect area, const Band &band)
{
    if (!area.intersects(band.rect))
        return area;
    if (band.edge == Qt::LeftEdge)
        area.setLeft(band.rect.right() + 1);
    else if (band.edge == Qt::RightEdge)
        area.setRight(band.rect.left() - 1);
    else if (band.edge == Qt::TopEdge)
        area.setTop(band.rect.bottom() + 1);
    else
        area.setBottom(band.rect.top() - 1);
    return area;
}

} // namespace

QRect WorkArea::of(const QRect &monitor, const QSize &root, const QList<Strut> &struts)
{
    QRect area = monitor;
    for (const Strut &strut : struts) {
        if (strut.size() != partialLength)
            continue;
        for (const Band &band : bandsOf(strut, root)) {
            if (const QRect rest = without(area, band); rest.isValid())
                area = rest;
        }
    }
    return area;
}

QList<WorkArea::Strut> WorkArea::reserved(X11Connection &connection)
{
    QList<Strut> struts;
    const QList<uint32_t> windows =
        WindowProperty::read(connection, connection.root(), connection.atoms()["_NET_CLIENT_LIST"]).values();
    xcb_connection_t *xcb = connection.xcb();
    const xcb_atom_t partial = connection.atoms()["_NET_WM_STRUT_PARTIAL"];
    // All questions leave before the first answer is awaited.
    QList<xcb_get_property_cookie_t> asked;
    for (const xcb_window_t window : windows)
        asked.append(xcb_get_property(xcb, false, window, partial, XCB_ATOM_CARDINAL, 0, partialLength));
    for (const xcb_get_property_cookie_t cookie : asked) {
        xcb_generic_error_t *error = nullptr;
        const auto reply = adopt(xcb_get_property_reply(xcb, cookie, &error));
        const auto refusal = adopt(error);
        if (!reply || reply->format != 32 || reply->value_len != partialLength)
            continue;
        const auto *values = static_cast<const uint32_t *>(xcb_get_property_value(reply.get()));
        struts.append(Strut(values, values + partialLength));
    }
    return struts;
}

QSize WorkArea::rootSize(X11Connection &connection)
{
    const auto asked = xcb_get_geometry(connection.xcb(), connection.root());
    const auto reply = adopt(xcb_get_geometry_reply(connection.xcb(), asked, nullptr));
    return reply ? QSize(reply->width, reply->height) : QSize();
}
