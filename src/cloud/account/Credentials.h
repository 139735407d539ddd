#pragma once

#include "base/FlowError.h"
#include "base/Provider.h"

#include <QCoroTask>
#include <QString>

#include <expected>
#include <stop_token>

class AccountSessionStore;
class Keychain;

/// What each provider is reached with: the user's own key, or the account's session.
class Credentials
{
public:
    Credentials(Keychain &keychain, AccountSessionStore &sessions);

    /// The trimmed key or the session token; `noAPIKey` when there is none. One that is not known is looked
    /// for, and the owner of a closed keyring may be asked. A stop request ends it early with that error.
    QCoro::Task<std::expected<QString, FlowError>> apiKey(Provider provider, std::stop_token stop) const;

    /// Whether the provider can be used, as far as is known. A keychain that could not be read so far counts
    /// as no credential.
    bool hasCredential(Provider provider) const;
    /// Whether the keychain has yet to answer for any provider.
    bool arePending() const;

    const Keychain &keychain() const { return m_keychain; }

private:
    Keychain &m_keychain;
    AccountSessionStore &m_sessions;
};
