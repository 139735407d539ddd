#include "machine/x11/XwaylandPanel.h"

#include "base/Appearance.h"
#include "machine/x11/X11Connection.h"

#include <algorithm>
#include <array>

#include <xcb/shape.h>
#include <xcb/xcb.h>

namespace {

constexpr uint8_t depth = 32;               // bits a pixel, of which eight are for what is seen through it
constexpr int bytesPerRequest = 128 * 1024; // a server takes twice as much at least

xcb_screen_t *screenOf(const X11Connection &connection)
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection.xcb())).data;
}

xcb_visualid_t visualOf(const X11Connection &connection)
{
    for (auto depths = xcb_screen_allowed_depths_iterator(screenOf(connection)); depths.rem;
         xcb_depth_next(&depths)) {
        if (depths.data->depth == depth && xcb_depth_visuals_length(depths.data) > 0)
            return xcb_depth_visuals(depths.data)->visual_id;
    }
    return XCB_NONE;
}

} // namespace

bool XwaylandPanel::isOffered(X11Connection &connection)
{
    return connection.isOpen() && visualOf(connection) != XCB_NONE;
}

XwaylandPanel::XwaylandPanel(PanelContent &content, X11Connection &connection, const Appearance &appearance)
    : m_content(content),
      m_connection(connection),
      m_appearance(appearance)
{
}

XwaylandPanel::~XwaylandPanel()
{
    hide();
    if (m_colormap != XCB_NONE)
        xcb_free_colormap(m_connection.xcb(), m_colormap);
    m_connection.flush();
}

std::optional<QRect> XwaylandPanel::visibleFrame() const
{
    if (!m_connection.isOpen())
        return std::nullopt;
    const xcb_screen_t *screen = screenOf(m_connection);
    return QRect(0, 0, screen->width_in_pixels, screen->height_in_pixels);
}

bool XwaylandPanel::reducesMotion() const
{
    return m_appearance.wishes().reducedMotion;
}

void XwaylandPanel::show(const QRect &frame, double cornerRadius)
{
    if (!m_connection.isOpen())
        return;
    const bool isResized = frame.size() != m_picture.panel();
    m_picture.resize(frame.size(), cornerRadius);
    if (isResized)
        hide();
    const bool isNew = m_window == XCB_WINDOW_NONE;
    if (isNew)
        makeWindow();
    paint(QRect(QPoint(0, 0), frame.size()));
    const std::array<uint32_t, 3> place{uint32_t(frame.x() - PanelShadow::reach),
                                        uint32_t(frame.y() - PanelShadow::reach), XCB_STACK_MODE_ABOVE};
    xcb_configure_window(m_connection.xcb(), m_window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_STACK_MODE,
                         place.data());
    if (isNew)
        xcb_map_window(m_connection.xcb(), m_window);
    m_connection.flush();
}

void XwaylandPanel::makeWindow()
{
    xcb_connection_t *xcb = m_connection.xcb();
    const xcb_visualid_t visual = visualOf(m_connection);
    const auto width = uint16_t(m_picture.size().width());
    const auto height = uint16_t(m_picture.size().height());
    if (m_colormap == XCB_NONE) {
        m_colormap = xcb_generate_id(xcb);
        xcb_create_colormap(xcb, XCB_COLORMAP_ALLOC_NONE, m_colormap, m_connection.root(), visual);
    }
    m_window = xcb_generate_id(xcb);
    const std::array<uint32_t, 3> values{0, true, m_colormap};
    xcb_create_window(xcb, depth, m_window, m_connection.root(), 0, 0, width, height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP, values.data());
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, m_window, m_connection.atoms()["_NET_WM_WINDOW_TYPE"],
                        XCB_ATOM_ATOM, 32, 1,
                        std::array{m_connection.atoms()["_NET_WM_WINDOW_TYPE_NOTIFICATION"]}.data());
    // Clicks reach what is below.
    xcb_shape_rectangles(xcb, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED, m_window, 0,
                         0, 0, nullptr);
    m_pixmap = xcb_generate_id(xcb);
    xcb_create_pixmap(xcb, depth, m_pixmap, m_window, width, height);
    m_context = xcb_generate_id(xcb);
    xcb_create_gc(xcb, m_context, m_pixmap, 0, nullptr);
}

void XwaylandPanel::hide()
{
    xcb_connection_t *xcb = m_connection.xcb();
    if (m_window == XCB_WINDOW_NONE)
        return;
    xcb_free_gc(xcb, m_context);
    xcb_free_pixmap(xcb, m_pixmap);
    xcb_destroy_window(xcb, m_window);
    m_window = XCB_WINDOW_NONE;
    m_connection.flush();
}

void XwaylandPanel::update(const QRect &part)
{
    if (m_window == XCB_WINDOW_NONE)
        return;
    paint(part);
    m_connection.flush();
}

void XwaylandPanel::paint(const QRect &part)
{
    m_picture.paint(m_content, part);
    const QImage &image = m_picture.image();
    xcb_connection_t *xcb = m_connection.xcb();
    const int rows = std::max(1, int(bytesPerRequest / image.bytesPerLine()));
    for (int top = 0; top < image.height(); top += rows) {
        const int count = std::min(rows, image.height() - top);
        xcb_put_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, m_pixmap, m_context, uint16_t(image.width()),
                      uint16_t(count), 0, int16_t(top), 0, depth, uint32_t(count * image.bytesPerLine()),
                      image.constScanLine(top));
    }
    xcb_change_window_attributes(xcb, m_window, XCB_CW_BACK_PIXMAP, &m_pixmap);
    xcb_clear_area(xcb, false, m_window, 0, 0, 0, 0);
}

void XwaylandPanel::announce(const QString &text)
{
    m_spoken.setShown(m_window != XCB_WINDOW_NONE);
    m_spoken.announce(text);
}
