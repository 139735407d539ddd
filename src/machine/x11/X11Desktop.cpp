#include "machine/x11/X11Desktop.h"

#include "machine/x11/X11Connection.h"
#include "machine/x11/X11Keyboard.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <xcb/randr.h>
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

/// Whether the screens are those of a Wayland compositor. The server's extension of that name is younger than
/// many servers; the names of their outputs tell as well.
bool isGuest(const X11Connection &connection)
{
    if (connection.hasExtension("XWAYLAND"))
        return true;
    xcb_connection_t *xcb = connection.xcb();
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(xcb, &xcb_randr_id);
    if (!extension || !extension->present)
        return false;
    const auto resources = adopt(xcb_randr_get_screen_resources_current_reply(
        xcb, xcb_randr_get_screen_resources_current(xcb, connection.root()), nullptr));
    if (!resources)
        return false;
    const std::span outputs(
        xcb_randr_get_screen_resources_current_outputs(resources.get()),
        static_cast<std::size_t>(xcb_randr_get_screen_resources_current_outputs_length(resources.get())));
    return std::ranges::any_of(outputs, [&](xcb_randr_output_t output) {
        const auto info = adopt(xcb_randr_get_output_info_reply(
            xcb, xcb_randr_get_output_info(xcb, output, XCB_CURRENT_TIME), nullptr));
        if (!info)
            return false;
        const std::string_view name(
            reinterpret_cast<const char *>(xcb_randr_get_output_info_name(info.get())),
            static_cast<std::size_t>(xcb_randr_get_output_info_name_length(info.get())));
        return name.starts_with("XWAYLAND");
    });
}

} // namespace

X11AccessibilityTrust::X11AccessibilityTrust(const X11Connection &connection, const X11Keyboard &keyboard)
    : m_connection(connection),
      m_isCapable(keyboard.isUsable() && canFakeKeys(connection) && !isGuest(connection))
{
}

bool X11AccessibilityTrust::isTrusted() const
{
    return m_isCapable && m_connection.isOpen();
}

X11Desktop::X11Desktop(const QByteArray &display)
    : m_connection(display),
      m_keyboard(m_connection),
      m_trust(m_connection, m_keyboard),
      m_pasteboard(display),
      m_keyTaps(display, m_trust),
      m_keyPoster(m_connection, m_keyboard, m_pasteboard, m_keyTaps, m_trust)
{
}
