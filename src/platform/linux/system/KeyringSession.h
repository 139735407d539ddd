#pragma once

#include "platform/linux/system/GlibPointer.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <expected>

struct _SecretService;

/// A client's session with the desktop's Secret Service (the freedesktop.org Secret Service API, 0.2):
/// bounded calls that never wait for a person, with secrets encrypted on the bus by libsecret.
///
/// Failures are numbers of SecretStatus. Paths are D-Bus object paths.
class KeyringSession
{
public:
    template <typename T>
    using Outcome = std::expected<T, int32_t>;
    using Attributes = QMap<QString, QString>;

    struct Items
    {
        QStringList unlocked;
        QStringList locked;
    };

    ~KeyringSession();

    Outcome<Items> search(const Attributes &attributes);

    /// Where new items go; empty when this user has no keyring yet.
    Outcome<QString> defaultCollection();
    Outcome<bool> isLocked(const QString &collection);

    Outcome<QByteArray> secret(const QString &item);
    Outcome<void> create(const QString &collection, const QString &label, const Attributes &attributes,
                         const QByteArray &secret);
    Outcome<void> remove(const QString &item);

private:
    GDBusConnection *bus();
    Outcome<_SecretService *> session();
    Outcome<GlibPointer<GVariant>> call(const QString &path, const char *interface, const char *method,
                                        GVariant *arguments, const char *replyType);
    Outcome<void> refusePrompt(const QString &prompt);
    void forget();

    GlibPointer<GDBusConnection> m_bus;
    GlibPointer<_SecretService> m_session;
};
