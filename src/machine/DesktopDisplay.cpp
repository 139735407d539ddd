#include "machine/DesktopDisplay.h"

#include "machine/wayland/WaylandConnection.h"
#include "machine/x11/X11Display.h"

QString DesktopDisplay::objection()
{
    return WaylandConnection::answers() ? QString() : X11Display::objection();
}
