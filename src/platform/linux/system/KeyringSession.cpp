#include "platform/linux/system/KeyringSession.h"

#include "platform/SecretStore.h"

#define SECRET_API_SUBJECT_TO_CHANGE 1
#define SECRET_WITH_UNSTABLE 1
#include <libsecret/secret.h>

#include <array>
#include <optional>
#include <string_view>

namespace {

constexpr char service[] = "org.freedesktop.secrets";
constexpr char servicePath[] = "/org/freedesktop/secrets";
constexpr char serviceInterface[] = "org.freedesktop.Secret.Service";
constexpr char itemInterface[] = "org.freedesktop.Secret.Item";
constexpr int timeoutMs = 3000; // a keyring on this computer; the caller is the main thread

/// The status for the name of a D-Bus error; none when the name says nothing.
std::optional<int32_t> statusOf(std::string_view name)
{
    struct Row
    {
        std::string_view name;
        int32_t status;
    };
    static constexpr std::array rows{
        Row{"org.freedesktop.Secret.Error.IsLocked", SecretStatus::interactionNotAllowed},
        Row{"org.freedesktop.Secret.Error.NoSuchObject", SecretStatus::itemNotFound},
        Row{"org.freedesktop.DBus.Error.UnknownObject", SecretStatus::itemNotFound},
        Row{"org.freedesktop.DBus.Error.AccessDenied", SecretStatus::authFailed},
        Row{"org.freedesktop.DBus.Error.AuthFailed", SecretStatus::authFailed},
        Row{"org.freedesktop.DBus.Error.ServiceUnknown", SecretStatus::notAvailable},
        Row{"org.freedesktop.DBus.Error.NameHasNoOwner", SecretStatus::notAvailable},
        Row{"org.freedesktop.DBus.Error.UnknownInterface", SecretStatus::notAvailable},
        Row{"org.freedesktop.DBus.Error.UnknownMethod", SecretStatus::notAvailable},
        Row{"org.freedesktop.DBus.Error.Disconnected", SecretStatus::notAvailable},
        Row{"org.freedesktop.DBus.Error.NoServer", SecretStatus::notAvailable},
    };
    for (const Row &row : rows) {
        if (row.name == name)
            return row.status;
    }
    if (name.starts_with("org.freedesktop.DBus.Error.Spawn."))
        return SecretStatus::notAvailable;
    return std::nullopt;
}

int32_t statusOf(const GError &error)
{
    if (g_dbus_error_is_remote_error(&error)) {
        gchar *name = g_dbus_error_get_remote_error(&error);
        const std::optional<int32_t> status = statusOf(std::string_view(name));
        g_free(name);
        return status.value_or(SecretStatus::ioError);
    }
    if (g_error_matches(&error, G_IO_ERROR, G_IO_ERROR_CLOSED))
        return SecretStatus::notAvailable;
    return SecretStatus::ioError;
}

QStringList pathsIn(GVariant *tuple, gsize index)
{
    const GlibPointer<GVariant> list(g_variant_get_child_value(tuple, index));
    QStringList paths;
    for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
        const GlibPointer<GVariant> path(g_variant_get_child_value(list.get(), i));
        paths += QString::fromUtf8(g_variant_get_string(path.get(), nullptr));
    }
    return paths;
}

QString pathIn(GVariant *tuple, gsize index)
{
    const GlibPointer<GVariant> path(g_variant_get_child_value(tuple, index));
    const QString text = QString::fromUtf8(g_variant_get_string(path.get(), nullptr));
    return text == QLatin1StringView("/") ? QString() : text;
}

GVariant *dictionary(const KeyringSession::Attributes &attributes)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{ss}"));
    for (auto it = attributes.begin(); it != attributes.end(); ++it)
        g_variant_builder_add(&builder, "{ss}", it.key().toUtf8().constData(),
                              it.value().toUtf8().constData());
    return g_variant_builder_end(&builder);
}

} // namespace

KeyringSession::~KeyringSession() = default;

GDBusConnection *KeyringSession::bus()
{
    if (m_bus && g_dbus_connection_is_closed(m_bus.get()))
        forget();
    if (!m_bus) {
        GError *raw = nullptr;
        m_bus.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &raw));
        const GlibPointer<GError> error(raw);
        if (m_bus)
            g_dbus_connection_set_exit_on_close(m_bus.get(), FALSE); // else the program ends with the bus
    }
    return m_bus.get();
}

void KeyringSession::forget()
{
    m_session.reset();
    m_bus.reset();
}

KeyringSession::Outcome<GlibPointer<GVariant>> KeyringSession::call(const QString &path,
                                                                    const char *interface, const char *method,
                                                                    GVariant *arguments,
                                                                    const char *replyType)
{
    const GlibPointer<GVariant> kept(arguments ? g_variant_ref_sink(arguments) : nullptr);
    GDBusConnection *connection = bus();
    if (!connection)
        return std::unexpected(SecretStatus::notAvailable);
    GError *raw = nullptr;
    GlibPointer<GVariant> reply(g_dbus_connection_call_sync(
        connection, service, path.toUtf8().constData(), interface, method, kept.get(),
        G_VARIANT_TYPE(replyType), G_DBUS_CALL_FLAGS_NONE, timeoutMs, nullptr, &raw));
    const GlibPointer<GError> error(raw);
    if (!reply) {
        m_session.reset(); // whatever went wrong, a keyring that was started anew knows no old session
        return std::unexpected(statusOf(*error));
    }
    return reply;
}

KeyringSession::Outcome<SecretService *> KeyringSession::session()
{
    if (!m_session) {
        // libsecret's own calls wait for 25 s; they are made only to a keyring that has just answered.
        if (const auto answer = defaultCollection(); !answer)
            return std::unexpected(answer.error());
        GError *raw = nullptr;
        m_session.reset(secret_service_open_sync(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION,
                                                 nullptr, &raw));
        const GlibPointer<GError> error(raw);
        if (!m_session)
            return std::unexpected(statusOf(*error));
    }
    return m_session.get();
}

KeyringSession::Outcome<KeyringSession::Items> KeyringSession::search(const Attributes &attributes)
{
    GVariant *wanted = dictionary(attributes);
    const auto reply = call(QString::fromLatin1(servicePath), serviceInterface, "SearchItems",
                            g_variant_new_tuple(&wanted, 1), "(aoao)");
    if (!reply)
        return std::unexpected(reply.error());
    return Items{pathsIn(reply->get(), 0), pathsIn(reply->get(), 1)};
}

KeyringSession::Outcome<QString> KeyringSession::defaultCollection()
{
    const auto reply = call(QString::fromLatin1(servicePath), serviceInterface, "ReadAlias",
                            g_variant_new("(s)", "default"), "(o)");
    if (!reply)
        return std::unexpected(reply.error());
    return pathIn(reply->get(), 0);
}

KeyringSession::Outcome<bool> KeyringSession::isLocked(const QString &collection)
{
    const auto reply = call(collection, "org.freedesktop.DBus.Properties", "Get",
                            g_variant_new("(ss)", "org.freedesktop.Secret.Collection", "Locked"), "(v)");
    if (!reply)
        return std::unexpected(reply.error());
    GVariant *raw = nullptr;
    g_variant_get(reply->get(), "(v)", &raw);
    const GlibPointer<GVariant> locked(raw);
    return g_variant_is_of_type(raw, G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(raw);
}

KeyringSession::Outcome<QByteArray> KeyringSession::secret(const QString &item)
{
    const bool fresh = !m_session;
    const auto open = session();
    if (!open)
        return std::unexpected(open.error());
    const char *path = secret_service_get_session_dbus_path(*open);
    const auto reply = call(item, itemInterface, "GetSecret", g_variant_new("(o)", path), "((oayays))");
    if (!reply) {
        const bool worthAnother = !fresh && reply.error() == SecretStatus::ioError;
        return worthAnother ? secret(item) : std::unexpected(reply.error());
    }
    const GlibPointer<GVariant> encoded(g_variant_get_child_value(reply->get(), 0));
    SecretValue *value = secret_service_decode_dbus_secret(*open, encoded.get());
    if (!value)
        return std::unexpected(SecretStatus::ioError);
    gsize length = 0;
    const gchar *bytes = secret_value_get(value, &length);
    const QByteArray data(bytes, qsizetype(length));
    secret_value_unref(value); // wiped with its last reference
    return data;
}

KeyringSession::Outcome<void> KeyringSession::create(const QString &collection, const QString &label,
                                                     const Attributes &attributes, const QByteArray &secret)
{
    const bool fresh = !m_session;
    const auto open = session();
    if (!open)
        return std::unexpected(open.error());
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Label",
                          g_variant_new_string(label.toUtf8().constData()));
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Attributes",
                          dictionary(attributes));

    SecretValue *value = secret_value_new(secret.constData(), gssize(secret.size()), "text/plain");
    GVariant *encoded = secret_service_encode_dbus_secret(*open, value);
    secret_value_unref(value);
    const auto reply = call(collection, "org.freedesktop.Secret.Collection", "CreateItem",
                            g_variant_new("(a{sv}@(oayays)b)", &properties, encoded, FALSE), "(oo)");
    if (!reply) {
        const bool worthAnother = !fresh && reply.error() == SecretStatus::ioError;
        return worthAnother ? create(collection, label, attributes, secret) : std::unexpected(reply.error());
    }
    return refusePrompt(pathIn(reply->get(), 1));
}

KeyringSession::Outcome<void> KeyringSession::remove(const QString &item)
{
    const auto reply = call(item, itemInterface, "Delete", nullptr, "(o)");
    if (!reply)
        return std::unexpected(reply.error());
    return refusePrompt(pathIn(reply->get(), 0));
}

/// A keyring that wants to ask the user first has done nothing yet, and here nobody can wait for it.
KeyringSession::Outcome<void> KeyringSession::refusePrompt(const QString &prompt)
{
    if (prompt.isEmpty())
        return {};
    call(prompt, "org.freedesktop.Secret.Prompt", "Dismiss", nullptr, "()");
    return std::unexpected(SecretStatus::interactionNotAllowed);
}
