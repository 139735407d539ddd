#include "machine/x11/X11FloatingPanels.h"

#include "machine/x11/AccessiblePanel.h"
#include "machine/x11/X11Connection.h"
#include "machine/x11/X11FloatingPanel.h"

#include <QGuiApplication>

std::unique_ptr<FloatingPanel> X11FloatingPanels::create(PanelContent &content)
{
    if (!m_connection.isOpen() || QGuiApplication::platformName() != QLatin1String("xcb"))
        return nullptr;
    AccessiblePanel::install();
    return std::make_unique<X11FloatingPanel>(content, m_connection);
}
