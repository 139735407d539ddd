#include "account/AccountSessionStore.h"

#include "settings/Keychain.h"

using namespace Qt::StringLiterals;

namespace {

const QString sessionAccount = u"sayvane_session"_s;

} // namespace

AccountSessionStore::AccountSessionStore(Keychain &keychain) : m_keychain(keychain)
{
}

std::optional<QString> AccountSessionStore::token() const
{
    const QString token = m_keychain.read(sessionAccount).value.value_or(QString()).trimmed();
    return token.isEmpty() ? std::nullopt : std::optional(token);
}

int32_t AccountSessionStore::save(const QString &token)
{
    return m_keychain.save(token.trimmed(), sessionAccount,
                           Keychain::Accessibility::afterFirstUnlockThisDeviceOnly);
}

int32_t AccountSessionStore::clear()
{
    return save(QString());
}
