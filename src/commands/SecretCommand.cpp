#include "app/SecretCommand.h"

#include "account/AccountSessionStore.h"
#include "settings/Keychain.h"
#include "values/Provider.h"

using namespace Qt::StringLiterals;

namespace {

std::optional<int32_t> stored(Keychain &keychain, const QString &account, const QString &secret)
{
    if (account == "sayvane_session"_L1)
        return AccountSessionStore(keychain).save(secret);
    for (const Provider provider : Providers::apiKeyProviders) {
        if (Providers::keychainAccount(provider) == account)
            return keychain.save(secret.trimmed(), account, Keychain::Accessibility::afterFirstUnlock);
    }
    return std::nullopt;
}

} // namespace

QString SecretCommand::store(SecretStore &secrets, const QString &account, const QByteArray &secret)
{
    Keychain keychain(secrets);
    const auto status = stored(keychain, account, QString::fromUtf8(secret));
    if (!status)
        return u"There is no secret of the name %1."_s.arg(account);
    if (*status == SecretStatus::success)
        return {};
    return u"Couldn't save to Keychain: "_s + keychain.message(*status);
}
