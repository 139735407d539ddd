#include "platform/linux/x11/X11AccessibilityTrust.h"

#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/X11Keyboard.h"
#include "platform/linux/x11/XcbReply.h"

#include <QtGlobal>

#include <xcb/xtest.h>

namespace {

bool canFakeKeys(const X11Connection &connection)
{
    xcb_connection_t *xcb = connection.xcb();
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(xcb, &xcb_test_id);
    if (!extension || !extension->present)
        return false;
    const auto reply = adopt(xcb_test_get_version_reply(xcb, xcb_test_get_version(xcb, 2, 2), nullptr));
    return reply && (reply->major_version > 2 || (reply->major_version == 2 && reply->minor_version >= 2));
}

bool isWaylandSession(const X11Connection &connection)
{
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") || connection.hasExtension("XWAYLAND");
}

} // namespace

X11AccessibilityTrust::X11AccessibilityTrust(const X11Connection &connection, const X11Keyboard &keyboard)
    : m_connection(connection),
      m_isCapable(keyboard.isUsable() && canFakeKeys(connection) && !isWaylandSession(connection))
{
}

bool X11AccessibilityTrust::isTrusted() const
{
    return m_isCapable && m_connection.isOpen();
}
