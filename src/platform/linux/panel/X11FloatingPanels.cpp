#include "platform/linux/panel/X11FloatingPanels.h"

#include "platform/linux/panel/AccessiblePanel.h"
#include "platform/linux/panel/NotificationPanel.h"
#include "platform/linux/panel/X11FloatingPanel.h"
#include "platform/linux/x11/X11Connection.h"

#include <QGuiApplication>

std::unique_ptr<FloatingPanel> X11FloatingPanels::create(PanelContent &content)
{
    if (QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        return std::make_unique<NotificationPanel>();
    if (!m_connection.isOpen() || QGuiApplication::platformName() != QLatin1String("xcb"))
        return nullptr;
    AccessiblePanel::install();
    return std::make_unique<X11FloatingPanel>(content, m_connection);
}
