#pragma once

#include <QDateTime>
#include <QString>

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
};
