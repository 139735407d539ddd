#pragma once

#include <QString>

#include <cstdint>
#include <optional>

class Keychain;

/// The signed-in session on this computer: its token in the keychain, and nothing else.
class AccountSessionStore
{
public:
    explicit AccountSessionStore(Keychain &keychain);

    /// The stored token, trimmed; none when there is no session or the keychain cannot be read.
    std::optional<QString> token() const;

    /// Stores the token, trimmed; returns the keychain's status.
    int32_t save(const QString &token);
    int32_t clear();

private:
    Keychain &m_keychain;
};
