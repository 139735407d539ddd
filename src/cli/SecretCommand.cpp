#include "cli/SecretCommand.h"

#include "base/Provider.h"
#include "cli/ExitCode.h"
#include "cli/Terminal.h"
#include "cloud/account/AccountSessionStore.h"
#include "preferences/Keychain.h"

#include <QCoroTask>
#include <QFile>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

std::optional<int32_t> stored(Keychain &keychain, const QString &account, const QString &secret)
{
    if (account == "sayvane_session"_L1)
        return QCoro::waitFor(AccountSessionStore(keychain).save(secret));
    for (const Provider provider : Providers::apiKeyProviders) {
        if (Providers::keychainAccount(provider) == account)
            return QCoro::waitFor(
                keychain.save(secret.trimmed(), account, Keychain::Accessibility::afterFirstUnlock));
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

int SecretCommand::run(SecretStore &secrets, const QString &account)
{
    static constexpr qint64 longestSecret = 4096;
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return Terminal::complain(input.errorString(), ExitCode::failed);
    const QString trouble = store(secrets, account, input.read(longestSecret));
    return trouble.isEmpty() ? ExitCode::done : Terminal::complain(trouble, ExitCode::failed);
}
