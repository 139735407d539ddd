#pragma once

#include "cloud/account/AccountError.h"

#include <QDateTime>
#include <QString>

#include <expected>
#include <optional>

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
