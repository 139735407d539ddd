#pragma once

#include "cloud/account/AccountError.h"

#include <QCoroTask>
#include <QDateTime>
#include <QString>

#include <cstdint>
#include <expected>
#include <optional>
#include <stop_token>

class Keychain;

/// The signed-in session on this computer: its token in the keychain, and nothing else.
class AccountSessionStore
{
public:
    explicit AccountSessionStore(Keychain &keychain);

    /// The stored token as it is known now, trimmed; none when there is no session or the keychain could
    /// not be read so far.
    std::optional<QString> token() const;
    /// Whether the keychain has yet to say if there is a session.
    bool isPending() const;
    /// The token, looked for where none is known; the owner of a closed keyring may be asked.
    QCoro::Task<std::optional<QString>> fetch(std::stop_token stop);

    /// Stores the token, trimmed; gives the keychain's status.
    QCoro::Task<int32_t> save(QString token);
    QCoro::Task<int32_t> clear();

    /// The service no longer accepts the token: it is none from now on, even where the keychain will not let
    /// it go.
    void reject();

    const Keychain &keychain() const { return m_keychain; }

private:
    std::optional<QString> usable(const std::optional<QString> &stored) const;

    Keychain &m_keychain;
    QString m_rejected;
};

/// A verified sign-in to the hosted service.
struct AccountSession
{
    QString token; ///< never empty, trimmed; the service's tokens begin with "svs_"
    QString email;
    QString plan = QStringLiteral("trial");
    qint64 dailyMinutes = 0;
    std::optional<QDateTime> expiresAt;

    bool operator==(const AccountSession &) const = default;

    /// The session in the service's answer to a code. `typedEmail` serves where the service names no address.
    static std::expected<AccountSession, AccountError> decode(const QByteArray &json,
                                                              const QString &typedEmail);
};
