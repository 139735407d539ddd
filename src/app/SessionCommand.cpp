#include "app/SessionCommand.h"

#include "account/AccountSessionStore.h"
#include "settings/Keychain.h"

using namespace Qt::StringLiterals;

QString SessionCommand::store(SecretStore &secrets, const QByteArray &token)
{
    Keychain keychain(secrets);
    const int32_t status = AccountSessionStore(keychain).save(QString::fromUtf8(token));
    if (status == SecretStatus::success)
        return {};
    return u"Couldn't save the session to the Keychain: "_s + keychain.message(status);
}
