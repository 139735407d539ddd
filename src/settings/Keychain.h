#pragma once

#include "platform/SecretStore.h"

#include <QString>

#include <optional>

/// The user's API keys and session token: one item per account name of the service "com.sayvane.app".
class Keychain
{
public:
    using Accessibility = SecretStore::Accessibility;

    struct ReadResult
    {
        /// The secret; absent when there is no item, the look-up failed or the bytes are not UTF-8.
        std::optional<QString> value;
        /// 0, `SecretStatus::itemNotFound`, or an error such as a locked keyring.
        int32_t status = 0;

        /// Whether the store could say what it holds, be it nothing.
        bool isReliable() const
        {
            return status == SecretStatus::success || status == SecretStatus::itemNotFound;
        }
    };

    explicit Keychain(SecretStore &store);

    ReadResult read(const QString &account) const;

    /// Replaces whatever the account holds; empty text deletes the item. Returns 0 or the failed step's
    /// status. When the new item cannot be added after the old one was removed, none remains.
    int32_t save(const QString &value, const QString &account, Accessibility accessibility);

    /// A sentence for a failed status.
    QString message(int32_t status) const;

private:
    SecretStore &m_store;
};
