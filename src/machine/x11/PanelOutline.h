#pragma once

#include <QSize>

#include <xcb/xcb.h>

/// The outline of a window where nothing can be translucent: a rounded rectangle of whole pixels.
class PanelOutline
{
public:
    /// On the connection that made the window.
    PanelOutline(xcb_connection_t *connection, xcb_window_t window);

    /// Cuts the window, which has this size, to rounded corners.
    void cut(const QSize &pixels, double cornerRadius) const;
    /// Leaves the window its whole rectangle.
    void clear() const;

private:
    xcb_connection_t *m_connection;
    xcb_window_t m_window;
};
