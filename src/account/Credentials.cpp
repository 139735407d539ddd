#include "account/Credentials.h"

#include "account/AccountSessionStore.h"
#include "settings/Keychain.h"

Credentials::Credentials(const Keychain &keychain, const AccountSessionStore &sessions)
    : m_keychain(keychain),
      m_sessions(sessions)
{
}

std::expected<QString, FlowError> Credentials::apiKey(Provider provider) const
{
    const QString credential =
        provider == Provider::sayvane
            ? m_sessions.token().value_or(QString())
            : m_keychain.read(Providers::keychainAccount(provider)).value.value_or(QString()).trimmed();
    if (credential.isEmpty())
        return std::unexpected(FlowError::noAPIKey(provider));
    return credential;
}

bool Credentials::hasCredential(Provider provider) const
{
    if (provider == Provider::sayvane)
        return m_sessions.token().has_value();
    return !m_keychain.read(Providers::keychainAccount(provider)).value.value_or(QString()).isEmpty();
}
