#pragma once

#include "machine/desktop/GlibThread.h"

#include <QByteArray>
#include <QUrl>

#include <optional>

/// The web proxy of the desktop's settings: "org.gnome.system.proxy", where GNOME and the desktops that share
/// its settings keep it. Read afresh for every request.
///
/// Only a proxy given by address is known; the desktop's automatic configuration by script counts as none.
class DesktopProxy
{
public:
    /// A proxy and where it is not to be used, both as libcurl writes them.
    struct Route
    {
        QByteArray proxy;
        QByteArray exceptions;
    };

    DesktopProxy();

    /// The proxy for the address; none when the desktop has none, or the environment names one, which is for
    /// libcurl to follow.
    std::optional<Route> route(const QUrl &url) const;

private:
    std::optional<QByteArray> address(const char *kind, const char *scheme) const;

    GlibPointer<GSettings> m_settings; // null where the desktop has no such settings
};
