#include "machine/x11/X11Display.h"

#include <QByteArray>

#include <xcb/xcb.h>

using namespace Qt::StringLiterals;

QString X11Display::objection()
{
    const QByteArray name = qgetenv("DISPLAY");
    if (name.isEmpty())
        return u"There is no display to run on: neither DISPLAY nor WAYLAND_DISPLAY is set."_s;
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers ? QString() : u"The display %1 does not answer."_s.arg(QString::fromLocal8Bit(name));
}
