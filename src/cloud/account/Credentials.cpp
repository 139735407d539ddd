#include "cloud/account/Credentials.h"

#include "cloud/account/AccountSession.h"
#include "preferences/Keychain.h"

#include <algorithm>

Credentials::Credentials(Keychain &keychain, AccountSessionStore &sessions)
    : m_keychain(keychain),
      m_sessions(sessions)
{
}

QCoro::Task<std::expected<QString, FlowError>> Credentials::apiKey(Provider provider,
                                                                   std::stop_token stop) const
{
    QString credential;
    if (provider == Provider::sayvane) {
        const std::optional<QString> token = co_await m_sessions.fetch(stop);
        credential = token.value_or(QString());
    } else {
        const QString account = Providers::keychainAccount(provider);
        const Keychain::ReadResult found = co_await m_keychain.fetch(account, stop);
        credential = found.value.value_or(QString()).trimmed();
    }
    if (credential.isEmpty())
        co_return std::unexpected(FlowError::noAPIKey(provider));
    co_return credential;
}

bool Credentials::hasCredential(Provider provider) const
{
    if (provider == Provider::sayvane)
        return m_sessions.token().has_value();
    return !m_keychain.read(Providers::keychainAccount(provider)).value.value_or(QString()).isEmpty();
}

bool Credentials::arePending() const
{
    return m_sessions.isPending() ||
           std::ranges::any_of(Providers::apiKeyProviders, [this](Provider provider) {
               return m_keychain.read(Providers::keychainAccount(provider)).isPending();
           });
}
