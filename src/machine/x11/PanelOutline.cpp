#include "machine/x11/PanelOutline.h"

#include <QList>

#include <algorithm>
#include <cmath>

#include <xcb/shape.h>

namespace {

/// How many pixels a row of the corner is set back: those whose centre is outside of the circle.
int setBack(int row, double radius)
{
    const double above = radius - (row + 0.5);
    if (above <= 0)
        return 0;
    return static_cast<int>(std::ceil(radius - std::sqrt(radius * radius - above * above) - 0.5));
}

} // namespace

PanelOutline::PanelOutline(xcb_connection_t *connection, xcb_window_t window)
    : m_connection(connection),
      m_window(window)
{
}

void PanelOutline::cut(const QSize &pixels, double cornerRadius) const
{
    QList<xcb_rectangle_t> rows;
    for (int row = 0; row < pixels.height(); ++row) {
        const int left = std::max(0, setBack(std::min(row, pixels.height() - 1 - row), cornerRadius));
        rows.append({static_cast<int16_t>(left), static_cast<int16_t>(row),
                     static_cast<uint16_t>(pixels.width() - 2 * left), 1});
    }
    xcb_shape_rectangles(m_connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_YX_BANDED,
                         m_window, 0, 0, static_cast<uint32_t>(rows.size()), rows.constData());
}

void PanelOutline::clear() const
{
    xcb_shape_mask(m_connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, m_window, 0, 0, XCB_PIXMAP_NONE);
}
