#include "settings/Keychain.h"

#include <QLoggingCategory>
#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.keychain", QtInfoMsg)

const QString service = u"com.sayvane.app"_s;

std::optional<QString> decodedUtf8(const QByteArray &bytes)
{
    QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decode(bytes);
    if (decode.hasError())
        return std::nullopt;
    return text;
}

} // namespace

Keychain::Keychain(SecretStore &store) : m_store(store)
{
}

Keychain::ReadResult Keychain::read(const QString &account) const
{
    const SecretStore::Found found = m_store.find(service, account);
    if (found.status != SecretStatus::success && found.status != SecretStatus::itemNotFound)
        qCWarning(log).noquote() << "Could not read" << account << "from the keyring:" << message(found.status);
    if (found.status != SecretStatus::success || !found.data)
        return {std::nullopt, found.status};
    return {decodedUtf8(*found.data), found.status};
}

int32_t Keychain::save(const QString &value, const QString &account, Accessibility accessibility)
{
    const int32_t removed = m_store.remove(service, account);
    if (removed != SecretStatus::success && removed != SecretStatus::itemNotFound)
        return removed;
    if (value.isEmpty())
        return SecretStatus::success;
    return m_store.add(service, account, value.toUtf8(), accessibility);
}

QString Keychain::message(int32_t status) const
{
    if (const auto known = m_store.message(status))
        return *known;
    return u"Keychain error "_s + QString::number(status);
}
