#include "machine/x11/X11FloatingPanel.h"

#include "machine/x11/DesktopSettings.h"
#include "machine/x11/MainScreen.h"
#include "machine/x11/X11Connection.h"

#include <QGuiApplication>
#include <QScreen>

#include <xcb/xfixes.h>

namespace {

/// The connection of the windows, apart from the program's own; what concerns a window is asked for there,
/// where the window exists by then.
xcb_connection_t *windowConnection()
{
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

} // namespace

Compositor::Compositor(X11Connection &connection)
    : m_connection(connection),
      m_selection(connection.atoms()["_NET_WM_CM_S0"])
{
    xcb_connection_t *xcb = connection.xcb();
    // The extension wants to be greeted on every connection before it serves it.
    const auto greeting = xcb_xfixes_query_version(xcb, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
    if (const auto version = adopt(xcb_xfixes_query_version_reply(xcb, greeting, nullptr))) {
        m_selectionNotify = static_cast<uint8_t>(xcb_get_extension_data(xcb, &xcb_xfixes_id)->first_event +
                                                 XCB_XFIXES_SELECTION_NOTIFY);
        xcb_xfixes_select_selection_input(xcb, connection.root(), m_selection,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        connect(&connection, &X11Connection::eventReceived, this,
                [this](const xcb_generic_event_t *event) { handle(*event); });
    }
    const auto asked = xcb_get_selection_owner(xcb, m_selection);
    const auto owner = adopt(xcb_get_selection_owner_reply(xcb, asked, nullptr));
    m_isRunning = owner && owner->owner != XCB_WINDOW_NONE;
}

void Compositor::handle(const xcb_generic_event_t &event)
{
    if ((event.response_type & 0x7f) != m_selectionNotify)
        return;
    const auto &notice = reinterpret_cast<const xcb_xfixes_selection_notify_event_t &>(event);
    const bool isRunning = notice.owner != XCB_WINDOW_NONE;
    if (notice.selection != m_selection || isRunning == m_isRunning)
        return;
    m_isRunning = isRunning;
    Q_EMIT changed();
}

X11FloatingPanel::X11FloatingPanel(PanelContent &content, X11Connection &connection)
    : m_content(content),
      m_connection(connection),
      m_compositor(connection),
      m_window(content),
      m_outline(windowConnection(), static_cast<xcb_window_t>(m_window.winId()))
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
    // The type and these two keep compositors from drawing a shadow of their own around the window's.
    setProperty("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                {m_connection.atoms()["_NET_WM_WINDOW_TYPE_NOTIFICATION"]});
    setProperty("_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, QList<uint32_t>(4, PanelShadow::reach));
    setProperty("_COMPTON_SHADOW", XCB_ATOM_CARDINAL, {0});
}

void X11FloatingPanel::setProperty(const QByteArray &name, xcb_atom_t type, const QList<uint32_t> &values)
{
    xcb_change_property(windowConnection(), XCB_PROP_MODE_REPLACE,
                        static_cast<xcb_window_t>(m_window.winId()), m_connection.atoms()[name], type, 32,
                        static_cast<uint32_t>(values.size()), values.constData());
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
    const double scale = m_window.devicePixelRatio();
    if (m_compositor.isRunning())
        m_outline.clear();
    else
        m_outline.cut((frame.size().toSizeF() * scale).toSize(), cornerRadius * scale);
    m_window.show();
    m_window.raise();
}

void X11FloatingPanel::announce(const QString &text)
{
    m_window.setAnnouncement(text);
    AccessiblePanel::announce(m_window);
}

std::unique_ptr<FloatingPanel> X11FloatingPanels::create(PanelContent &content)
{
    if (!m_connection.isOpen() || QGuiApplication::platformName() != QLatin1String("xcb"))
        return nullptr;
    AccessiblePanel::install();
    return std::make_unique<X11FloatingPanel>(content, m_connection);
}
