#include "machine/network/DesktopProxy.h"

#include <QList>

#include <algorithm>

namespace {

constexpr char schemaName[] = "org.gnome.system.proxy";

GlibPointer<GSettings> settings()
{
    GSettingsSchemaSource *source = g_settings_schema_source_get_default();
    GSettingsSchema *schema = source ? g_settings_schema_source_lookup(source, schemaName, TRUE) : nullptr;
    if (!schema) // g_settings_new would end the program
        return nullptr;
    g_settings_schema_unref(schema);
    return GlibPointer<GSettings>(g_settings_new(schemaName));
}

QByteArray text(GSettings *settings, const char *key)
{
    gchar *value = g_settings_get_string(settings, key);
    const QByteArray bytes(value);
    g_free(value);
    return bytes;
}

/// The hosts to reach directly. What the desktop writes "*.example.org" is ".example.org" to libcurl.
QByteArray exceptions(GSettings *settings)
{
    gchar **hosts = g_settings_get_strv(settings, "ignore-hosts");
    QList<QByteArray> list;
    for (gchar **host = hosts; *host; ++host)
        list.append(QByteArray(*host).startsWith("*.") ? QByteArray(*host + 1) : QByteArray(*host));
    g_strfreev(hosts);
    return list.join(',');
}

bool environmentNamesOne(bool isSecure)
{
    const auto isSet = [](const char *name) { return !qEnvironmentVariableIsEmpty(name); };
    return isSet("all_proxy") || isSet("ALL_PROXY") ||
           (isSecure ? isSet("https_proxy") || isSet("HTTPS_PROXY") : isSet("http_proxy"));
}

} // namespace

DesktopProxy::DesktopProxy() : m_settings(settings())
{
}

std::optional<DesktopProxy::Route> DesktopProxy::route(const QUrl &url) const
{
    const bool isSecure = url.scheme() == QLatin1StringView("https");
    if (!m_settings || environmentNamesOne(isSecure) || text(m_settings.get(), "mode") != "manual")
        return std::nullopt;
    auto proxy = address(isSecure ? "https" : "http", "http://");
    if (!proxy)
        proxy = address("socks", "socks5h://");
    if (!proxy)
        return std::nullopt;
    return Route{*proxy, exceptions(m_settings.get())};
}

std::optional<QByteArray> DesktopProxy::address(const char *kind, const char *scheme) const
{
    const GlibPointer<GSettings> child(g_settings_get_child(m_settings.get(), kind));
    const QByteArray host = text(child.get(), "host").trimmed();
    const int port = g_settings_get_int(child.get(), "port");
    if (host.isEmpty() || port == 0)
        return std::nullopt;
    const QByteArray name = host.contains(':') && !host.startsWith('[') ? '[' + host + ']' : host; // IPv6
    return scheme + name + ':' + QByteArray::number(port);
}
