#include "machine/x11/MainScreen.h"

#include "machine/x11/WorkArea.h"
#include "machine/x11/FocusedWindow.h"
#include "machine/x11/X11Connection.h"
#include "machine/x11/XcbReply.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace {

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
