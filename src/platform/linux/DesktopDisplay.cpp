#include "platform/linux/DesktopDisplay.h"

#include "platform/linux/wayland/WaylandConnection.h"
#include "platform/linux/x11/X11Display.h"

QString DesktopDisplay::objection()
{
    return WaylandConnection::answers() ? QString() : X11Display::objection();
}
