#pragma once

#include "base/FloatingPanel.h"
#include "machine/desktop/PanelPicture.h"
#include "machine/desktop/SpokenPanel.h"

#include <xcb/xproto.h>

class Appearance;
class PanelContent;
class X11Connection;

/// A floating panel on a Wayland desktop that offers programs no such surface, but runs an X server as its
/// guest: the compositor shows a window there that no window manager is asked about above all others, and
/// leaves the keyboard where it is.
class XwaylandPanel final : public FloatingPanel
{
public:
    XwaylandPanel(PanelContent &content, X11Connection &connection, const Appearance &appearance);
    ~XwaylandPanel() override;
    Q_DISABLE_COPY_MOVE(XwaylandPanel)

    /// Whether the server can have a window that is seen through.
    static bool isOffered(X11Connection &connection);

    std::optional<QRect> visibleFrame() const override;
    bool reducesMotion() const override;
    void show(const QRect &frame, double cornerRadius) override;
    void hide() override;
    void update(const QRect &part) override;
    void announce(const QString &text) override;

private:
    void makeWindow();
    void paint(const QRect &part);

    PanelContent &m_content;
    X11Connection &m_connection;
    const Appearance &m_appearance;
    xcb_window_t m_window = XCB_WINDOW_NONE; // while it is shown
    xcb_pixmap_t m_pixmap = XCB_PIXMAP_NONE; // the server paints the window from it
    xcb_gcontext_t m_context = XCB_NONE;
    xcb_colormap_t m_colormap = XCB_NONE;
    PanelPicture m_picture;
    SpokenPanel m_spoken;
};
