#include "machine/desktop/KeyringSession.h"

#include "base/SecretStore.h"

#include <QScopeGuard>

#include <array>
#include <optional>
#include <string_view>

#define SECRET_API_SUBJECT_TO_CHANGE 1
#define SECRET_WITH_UNSTABLE 1
#include <libsecret/secret.h>

namespace {

/// One asynchronous operation of GIO, for the coroutine that began it on the thread of its main context:
/// `ended` and the operation itself are GIO's callback and its data.
class GioOperation
{
public:
    using Result = std::shared_ptr<GAsyncResult>;
    using Awaiter = Completion<Result>::Awaiter;

    static void ended(GObject *, GAsyncResult *result, gpointer self)
    {
        const Result kept = glibShared(G_ASYNC_RESULT(g_object_ref(result)));
        static_cast<GioOperation *>(self)->m_completion.complete(kept);
    }

    /// What to `co_await`; the operation must stay in place meanwhile.
    Awaiter result() { return Awaiter{&m_completion}; }

private:
    Completion<Result> m_completion;
};

constexpr char service[] = "org.freedesktop.secrets";
constexpr char servicePath[] = "/org/freedesktop/secrets";
constexpr char serviceInterface[] = "org.freedesktop.Secret.Service";
constexpr char itemInterface[] = "org.freedesktop.Secret.Item";
constexpr char collectionInterface[] = "org.freedesktop.Secret.Collection";
constexpr char promptInterface[] = "org.freedesktop.Secret.Prompt";
constexpr int callLimitMs = 10000;      // a keyring on this computer, perhaps in the middle of the log-in
constexpr int personLimitMs = G_MAXINT; // none: a person answers
constexpr int announcementMs = 50;      // one for all that an act changes
constexpr int lookAgainMs = 5000;

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

/// The status of the error that GIO handed over, which is freed.
int32_t statusAndRelease(GError *raw)
{
    const GlibPointer<GError> error(raw);
    return error ? statusOf(*error) : SecretStatus::ioError;
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

QString pathOf(GVariant *path)
{
    const QString text = QString::fromUtf8(g_variant_get_string(path, nullptr));
    return text == QLatin1StringView("/") ? QString() : text;
}

QString pathIn(GVariant *tuple, gsize index)
{
    const GlibPointer<GVariant> path(g_variant_get_child_value(tuple, index));
    return pathOf(path.get());
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

KeyringSession::KeyringSession(Listener listener)
    : m_listener(std::move(listener)),
      m_stop(g_cancellable_new())
{
}

KeyringSession::~KeyringSession()
{
    if (m_announcement)
        g_source_destroy(m_announcement.get());
    forget();
}

void KeyringSession::cancel()
{
    g_cancellable_cancel(m_stop.get());
    abandonPrompt();
}

void KeyringSession::forget()
{
    for (const guint subscription : std::as_const(m_subscriptions))
        g_dbus_connection_signal_unsubscribe(m_bus.get(), subscription);
    m_subscriptions.clear();
    m_session = {};
    m_bus = {};
}

KeyringSession::Answer<KeyringSession::Bus> KeyringSession::bus()
{
    const Turns::Turn turn = co_await m_connecting.take();
    if (m_bus && g_dbus_connection_is_closed(m_bus.get()))
        forget();
    if (!m_bus) {
        GioOperation operation;
        g_bus_get(G_BUS_TYPE_SESSION, m_stop.get(), &GioOperation::ended, &operation);
        const GioOperation::Awaiter awaiter = operation.result();
        const GioOperation::Result result = co_await awaiter;
        GError *error = nullptr;
        m_bus = {glibShared(g_bus_get_finish(result.get(), &error))};
        if (!m_bus) {
            statusAndRelease(error);
            co_return std::unexpected(SecretStatus::notAvailable);
        }
        g_dbus_connection_set_exit_on_close(m_bus.get(), FALSE); // else the program ends with the bus
        follow();
    }
    const Outcome<Bus> bus = m_bus;
    co_return bus;
}

void KeyringSession::follow()
{
    m_subscriptions = {
        g_dbus_connection_signal_subscribe(m_bus.get(), service, nullptr, nullptr, nullptr, nullptr,
                                           G_DBUS_SIGNAL_FLAGS_NONE, &KeyringSession::signalled, this,
                                           nullptr),
        g_dbus_connection_signal_subscribe(m_bus.get(), "org.freedesktop.DBus", "org.freedesktop.DBus",
                                           "NameOwnerChanged", "/org/freedesktop/DBus", service,
                                           G_DBUS_SIGNAL_FLAGS_NONE, &KeyringSession::signalled, this,
                                           nullptr),
    };
}

void KeyringSession::signalled(GDBusConnection *, const gchar *, const gchar *path, const gchar *interface,
                               const gchar *name, GVariant *arguments, gpointer self)
{
    auto *session = static_cast<KeyringSession *>(self);
    if (std::string_view(name) == "NameOwnerChanged" &&
        g_variant_is_of_type(arguments, G_VARIANT_TYPE("(sss)"))) {
        const gchar *owner = nullptr;
        g_variant_get_child(arguments, 2, "&s", &owner);
        return session->ownerChanged(*owner != '\0');
    }
    if (std::string_view(path).starts_with(servicePath) && std::string_view(interface) != promptInterface)
        session->announce(announcementMs);
}

void KeyringSession::ownerChanged(bool isThere)
{
    m_session = {}; // the next one knows nothing of it
    m_listener.left();
    if (isThere)
        announce(announcementMs);
}

void KeyringSession::lookAgainLater()
{
    if (!m_announcement)
        announce(lookAgainMs);
}

void KeyringSession::announce(int delayMs)
{
    if (m_announcement)
        g_source_destroy(m_announcement.get());
    m_announcement.reset(g_timeout_source_new(guint(delayMs)));
    const auto tell = [](gpointer self) -> gboolean {
        auto *session = static_cast<KeyringSession *>(self);
        session->m_announcement.reset();
        session->m_listener.changed();
        return G_SOURCE_REMOVE;
    };
    g_source_set_callback(m_announcement.get(), tell, this, nullptr);
    g_source_attach(m_announcement.get(), g_main_context_get_thread_default());
}

KeyringSession::Answer<KeyringSession::Reply> KeyringSession::call(QString path, const char *interface,
                                                                   const char *method, GVariant *arguments,
                                                                   const char *replyType, int limitMs)
{
    const Reply kept{glibShared(arguments ? g_variant_ref_sink(arguments) : nullptr)};
    const Outcome<Bus> connection = co_await bus();
    if (!connection)
        co_return std::unexpected(connection.error());
    GioOperation operation;
    g_dbus_connection_call(connection->get(), service, path.toUtf8().constData(), interface, method,
                           kept.get(), G_VARIANT_TYPE(replyType), G_DBUS_CALL_FLAGS_NONE, limitMs,
                           m_stop.get(), &GioOperation::ended, &operation);
    const GioOperation::Awaiter awaiter = operation.result();
    const GioOperation::Result result = co_await awaiter;
    GError *error = nullptr;
    const Reply reply{glibShared(g_dbus_connection_call_finish(connection->get(), result.get(), &error))};
    if (!reply)
        co_return std::unexpected(statusAndRelease(error));
    co_return reply;
}

KeyringSession::Answer<KeyringSession::Session> KeyringSession::session()
{
    const Turns::Turn turn = co_await m_opening.take();
    if (!m_session) {
        // libsecret's own calls wait for 25 s; they are made only to a keyring that has just answered.
        const Outcome<QString> answer = co_await defaultCollection();
        if (!answer)
            co_return std::unexpected(answer.error());
        GioOperation operation;
        secret_service_open(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION, m_stop.get(),
                            &GioOperation::ended, &operation);
        const GioOperation::Awaiter awaiter = operation.result();
        const GioOperation::Result result = co_await awaiter;
        GError *error = nullptr;
        m_session = {glibShared(secret_service_open_finish(result.get(), &error))};
        if (!m_session)
            co_return std::unexpected(statusAndRelease(error));
    }
    const Outcome<Session> session = m_session;
    co_return session;
}

KeyringSession::Answer<KeyringSession::Items> KeyringSession::search(Attributes attributes)
{
    GVariant *wanted = dictionary(attributes);
    const Outcome<Reply> reply =
        co_await call(QString::fromLatin1(servicePath), serviceInterface, "SearchItems",
                      g_variant_new_tuple(&wanted, 1), "(aoao)", callLimitMs);
    if (!reply)
        co_return std::unexpected(reply.error());
    const Items items{pathsIn(reply->get(), 0), pathsIn(reply->get(), 1)};
    co_return items;
}

KeyringSession::Answer<QString> KeyringSession::defaultCollection()
{
    const Outcome<Reply> reply =
        co_await call(QString::fromLatin1(servicePath), serviceInterface, "ReadAlias",
                      g_variant_new("(s)", "default"), "(o)", callLimitMs);
    if (!reply)
        co_return std::unexpected(reply.error());
    co_return pathIn(reply->get(), 0);
}

KeyringSession::Answer<bool> KeyringSession::isLocked(QString collection)
{
    const Outcome<Reply> reply =
        co_await call(collection, "org.freedesktop.DBus.Properties", "Get",
                      g_variant_new("(ss)", collectionInterface, "Locked"), "(v)", callLimitMs);
    if (!reply)
        co_return std::unexpected(reply.error());
    GVariant *raw = nullptr;
    g_variant_get(reply->get(), "(v)", &raw);
    const GlibPointer<GVariant> locked(raw);
    const bool isLocked = g_variant_is_of_type(raw, G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(raw);
    co_return isLocked;
}

KeyringSession::Answer<KeyringSession::Secret> KeyringSession::secret(QString item)
{
    const Outcome<Session> open = co_await session();
    if (!open)
        co_return std::unexpected(open.error());
    const char *path = secret_service_get_session_dbus_path(open->get());
    const Outcome<Reply> reply = co_await call(item, itemInterface, "GetSecret", g_variant_new("(o)", path),
                                               "((oayays))", callLimitMs);
    if (!reply) {
        if (reply.error() == SecretStatus::ioError)
            m_session = {}; // perhaps it is no longer known there
        co_return std::unexpected(reply.error());
    }
    const GlibPointer<GVariant> encoded(g_variant_get_child_value(reply->get(), 0));
    SecretValue *value = secret_service_decode_dbus_secret(open->get(), encoded.get());
    if (!value)
        co_return std::unexpected(SecretStatus::ioError);
    gsize length = 0;
    const gchar *bytes = secret_value_get(value, &length);
    const Secret secret{QByteArray(bytes, qsizetype(length))};
    secret_value_unref(value); // wiped with its last reference
    co_return secret;
}

KeyringSession::Answer<QString> KeyringSession::create(QString collection, QString label,
                                                       Attributes attributes, QByteArray secret)
{
    const Outcome<Session> open = co_await session();
    if (!open)
        co_return std::unexpected(open.error());
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Label",
                          g_variant_new_string(label.toUtf8().constData()));
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Attributes",
                          dictionary(attributes));

    SecretValue *value = secret_value_new(secret.constData(), gssize(secret.size()), "text/plain");
    GVariant *encoded = secret_service_encode_dbus_secret(open->get(), value);
    secret_value_unref(value);
    GVariant *arguments = g_variant_new("(a{sv}@(oayays)b)", &properties, encoded, FALSE);
    const Outcome<Reply> reply =
        co_await call(collection, collectionInterface, "CreateItem", arguments, "(oo)", callLimitMs);
    if (!reply) {
        if (reply.error() == SecretStatus::ioError)
            m_session = {};
        co_return std::unexpected(reply.error());
    }
    co_return pathIn(reply->get(), 1);
}

KeyringSession::Answer<QString> KeyringSession::remove(QString item)
{
    const Outcome<Reply> reply = co_await call(item, itemInterface, "Delete", nullptr, "(o)", callLimitMs);
    if (!reply)
        co_return std::unexpected(reply.error());
    co_return pathIn(reply->get(), 0);
}

KeyringSession::Answer<QString> KeyringSession::unlock(QStringList objects)
{
    GVariantBuilder paths;
    g_variant_builder_init(&paths, G_VARIANT_TYPE("ao"));
    for (const QString &object : std::as_const(objects))
        g_variant_builder_add(&paths, "o", object.toUtf8().constData());
    const Outcome<Reply> reply = co_await call(QString::fromLatin1(servicePath), serviceInterface, "Unlock",
                                               g_variant_new("(ao)", &paths), "(aoo)", callLimitMs);
    if (!reply)
        co_return std::unexpected(reply.error());
    co_return pathIn(reply->get(), 1);
}

KeyringSession::Answer<QString> KeyringSession::createDefaultCollection()
{
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Collection.Label",
                          g_variant_new_string("Default keyring"));
    const Outcome<Reply> reply =
        co_await call(QString::fromLatin1(servicePath), serviceInterface, "CreateCollection",
                      g_variant_new("(a{sv}s)", &properties, "default"), "(oo)", callLimitMs);
    if (!reply)
        co_return std::unexpected(reply.error());
    co_return pathIn(reply->get(), 1);
}

KeyringSession::Answer<QString> KeyringSession::show(QString prompt)
{
    const Outcome<Bus> connection = co_await bus();
    if (!connection)
        co_return std::unexpected(connection.error());
    Completion<Outcome<QString>> answered;
    m_prompt = &answered;
    const guint subscription = g_dbus_connection_signal_subscribe(
        connection->get(), service, promptInterface, "Completed", prompt.toUtf8().constData(), nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE, &KeyringSession::promptCompleted, this, nullptr);
    const auto leave = qScopeGuard([this, connection, subscription] {
        g_dbus_connection_signal_unsubscribe(connection->get(), subscription);
        m_prompt = nullptr;
    });
    // It stands on no window of ours.
    const Outcome<Reply> shown =
        co_await call(prompt, promptInterface, "Prompt", g_variant_new("(s)", ""), "()", personLimitMs);
    if (!shown)
        co_return std::unexpected(shown.error());
    const Completion<Outcome<QString>>::Awaiter awaiter{&answered};
    const Outcome<QString> outcome = co_await awaiter;
    co_return outcome;
}

void KeyringSession::promptCompleted(GDBusConnection *, const gchar *, const gchar *, const gchar *,
                                     const gchar *, GVariant *arguments, gpointer self)
{
    auto *session = static_cast<KeyringSession *>(self);
    if (!session->m_prompt || !g_variant_is_of_type(arguments, G_VARIANT_TYPE("(bv)")))
        return;
    gboolean dismissed = FALSE;
    GVariant *raw = nullptr;
    g_variant_get(arguments, "(bv)", &dismissed, &raw);
    const GlibPointer<GVariant> made(raw);
    if (dismissed)
        return session->m_prompt->complete(std::unexpected(SecretStatus::userCanceled));
    const bool isPath = g_variant_is_of_type(raw, G_VARIANT_TYPE_OBJECT_PATH);
    session->m_prompt->complete(isPath ? pathOf(raw) : QString());
}

void KeyringSession::abandonPrompt()
{
    if (m_prompt)
        m_prompt->complete(std::unexpected(SecretStatus::notAvailable));
}
