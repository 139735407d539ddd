#include "machine/x11/MainScreen.h"

#include "machine/x11/FocusedWindow.h"
#include "machine/x11/X11Connection.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
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

/// A screen's origin is given in pixels already, its size in points.
QRect pixelsOf(const QScreen &screen)
{
    const QRect points = screen.geometry();
    const double scale = screen.devicePixelRatio();
    return {points.topLeft(), QSize(qRound(points.width() * scale), qRound(points.height() * scale))};
}

QRect geometryOf(X11Connection &connection, xcb_window_t window)
{
    xcb_connection_t *xcb = connection.xcb();
    const auto size = xcb_get_geometry(xcb, window);
    const auto place = xcb_translate_coordinates(xcb, window, connection.root(), 0, 0);
    xcb_generic_error_t *error = nullptr;
    const auto geometry = adopt(xcb_get_geometry_reply(xcb, size, &error));
    const auto refusal = adopt(error);
    xcb_generic_error_t *secondError = nullptr;
    const auto origin = adopt(xcb_translate_coordinates_reply(xcb, place, &secondError));
    const auto secondRefusal = adopt(secondError);
    if (!geometry || !origin)
        return {};
    return {origin->dst_x, origin->dst_y, geometry->width, geometry->height};
}

std::optional<QPoint> pointer(X11Connection &connection)
{
    const auto asked = xcb_query_pointer(connection.xcb(), connection.root());
    const auto reply = adopt(xcb_query_pointer_reply(connection.xcb(), asked, nullptr));
    return reply ? std::optional(QPoint(reply->root_x, reply->root_y)) : std::nullopt;
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

std::optional<MainScreen> MainScreen::find(X11Connection &connection)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    if (screens.isEmpty())
        return std::nullopt;
    if (screens.size() == 1)
        return MainScreen{screens.first()};
    const QRect window = geometryOf(connection, FocusedWindow::find(connection));
    const auto holds = [](const QPoint &point) {
        return [point](const QScreen *screen) { return pixelsOf(*screen).contains(point); };
    };
    // The desktop's own background is a window over all screens and says nothing.
    const auto spanned = std::ranges::count_if(
        screens, [&](const QScreen *screen) { return window.contains(pixelsOf(*screen).center()); });
    if (!window.isEmpty() && spanned < 2) {
        const auto found = std::ranges::find_if(screens, holds(window.center()));
        if (found != screens.end())
            return MainScreen{*found};
    }
    if (const std::optional<QPoint> place = pointer(connection)) {
        const auto found = std::ranges::find_if(screens, holds(*place));
        if (found != screens.end())
            return MainScreen{*found};
    }
    return MainScreen{QGuiApplication::primaryScreen()};
}

QRect MainScreen::visibleFrame(X11Connection &connection) const
{
    const QRect monitor = pixelsOf(*screen);
    const QRect area = WorkArea::of(monitor, WorkArea::rootSize(connection), WorkArea::reserved(connection));
    const double scale = screen->devicePixelRatio();
    const QRectF points((area.topLeft() - monitor.topLeft()).toPointF() / scale,
                        area.size().toSizeF() / scale);
    const QRect frame = points.toRect().translated(monitor.topLeft());
    // With one screen the desktop's own word covers docks that are no windows.
    const bool isAlone = QGuiApplication::screens().size() == 1;
    return isAlone ? frame.intersected(screen->availableGeometry()) : frame;
}
