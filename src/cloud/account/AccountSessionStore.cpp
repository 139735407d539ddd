#include "cloud/account/AccountSessionStore.h"

#include "preferences/Keychain.h"

AccountSessionStore::AccountSessionStore(Keychain &keychain) : m_keychain(keychain)
{
}

std::optional<QString> AccountSessionStore::usable(const std::optional<QString> &stored) const
{
    const QString token = stored.value_or(QString()).trimmed();
    return token.isEmpty() || token == m_rejected ? std::nullopt : std::optional(token);
}

std::optional<QString> AccountSessionStore::token() const
{
    return usable(m_keychain.read(Keychain::sessionAccount).value);
}

bool AccountSessionStore::isPending() const
{
    return m_keychain.read(Keychain::sessionAccount).isPending();
}

QCoro::Task<std::optional<QString>> AccountSessionStore::fetch(std::stop_token stop)
{
    const Keychain::ReadResult found = co_await m_keychain.fetch(Keychain::sessionAccount, stop);
    if (stop.stop_requested())
        co_return std::optional<QString>();
    co_return usable(found.value);
}

QCoro::Task<int32_t> AccountSessionStore::save(QString token)
{
    if (!token.isEmpty())
        m_rejected.clear();
    return m_keychain.save(token.trimmed(), Keychain::sessionAccount,
                           Keychain::Accessibility::afterFirstUnlockThisDeviceOnly);
}

QCoro::Task<int32_t> AccountSessionStore::clear()
{
    return save(QString());
}

void AccountSessionStore::reject()
{
    m_rejected = token().value_or(m_rejected);
    clear();
}
