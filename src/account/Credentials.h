#pragma once

#include "values/FlowError.h"
#include "values/Provider.h"

#include <QString>

#include <expected>

class AccountSessionStore;
class Keychain;

/// What each provider is reached with: the user's own key, or the account's session.
class Credentials
{
public:
    Credentials(const Keychain &keychain, const AccountSessionStore &sessions);

    /// The trimmed key or the session token; `noAPIKey` when there is none.
    std::expected<QString, FlowError> apiKey(Provider provider) const;

    /// Whether the provider can be used now. A keychain that cannot be read counts as no credential.
    bool hasCredential(Provider provider) const;

private:
    const Keychain &m_keychain;
    const AccountSessionStore &m_sessions;
};
