#include "platform/linux/panel/X11FloatingPanel.h"

#include "platform/PanelContent.h"
#include "platform/linux/panel/AccessiblePanel.h"
#include "platform/linux/panel/DesktopSettings.h"
#include "platform/linux/panel/MainScreen.h"
#include "platform/linux/x11/X11Connection.h"

#include <QGuiApplication>
#include <QScreen>

X11FloatingPanel::X11FloatingPanel(PanelContent &content, X11Connection &connection)
    : m_content(content),
      m_connection(connection),
      m_compositor(connection),
      m_window(content)
{
    prepare();
    connect(&m_compositor, &Compositor::changed, this, &X11FloatingPanel::screensChanged);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen *screen) {
        watch(screen);
        screensChanged();
    });
    // A screen that goes is still among the others when it says so.
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &X11FloatingPanel::screensChanged,
            Qt::QueuedConnection);
    for (QScreen *screen : QGuiApplication::screens())
        watch(screen);
}

void X11FloatingPanel::prepare()
{
    m_window.create();
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    const auto window = static_cast<xcb_window_t>(m_window.winId());
    // On the connection that made the window, so that it exists by then. The type tells compositors which
    // of their effects to leave away; the shadow is drawn by the window itself.
    const xcb_atom_t type = m_connection.atoms()["_NET_WM_WINDOW_TYPE_NOTIFICATION"];
    xcb_change_property(x11->connection(), XCB_PROP_MODE_REPLACE, window,
                        m_connection.atoms()["_NET_WM_WINDOW_TYPE"], XCB_ATOM_ATOM, 32, 1, &type);
    const uint32_t noShadow = 0;
    xcb_change_property(x11->connection(), XCB_PROP_MODE_REPLACE, window,
                        m_connection.atoms()["_COMPTON_SHADOW"], XCB_ATOM_CARDINAL, 32, 1, &noShadow);
}

void X11FloatingPanel::watch(QScreen *screen)
{
    connect(screen, &QScreen::geometryChanged, this, &X11FloatingPanel::screensChanged);
    connect(screen, &QScreen::availableGeometryChanged, this, &X11FloatingPanel::screensChanged);
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, &X11FloatingPanel::screensChanged);
}

void X11FloatingPanel::screensChanged()
{
    if (m_window.isVisible())
        m_content.screensChanged();
}

std::optional<QRect> X11FloatingPanel::visibleFrame() const
{
    const std::optional<MainScreen> screen = MainScreen::find(m_connection);
    return screen ? std::optional(screen->visibleFrame(m_connection)) : std::nullopt;
}

bool X11FloatingPanel::reducesMotion() const
{
    return DesktopSettings::read(m_connection).integer("Gtk/EnableAnimations") == 0;
}

void X11FloatingPanel::show(const QRect &frame, double cornerRadius)
{
    if (QScreen *screen = QGuiApplication::screenAt(frame.center()); screen && screen != m_window.screen())
        m_window.setScreen(screen);
    m_window.place(frame, cornerRadius, m_compositor.isRunning());
    m_window.show();
    m_window.raise();
}

void X11FloatingPanel::announce(const QString &text)
{
    m_window.setAnnouncement(text);
    AccessiblePanel::announce(m_window);
}
