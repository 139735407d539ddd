#pragma once

#include <QString>

#include <optional>

/// What the service says of an account; every fact may be missing.
struct AccountInfo
{
    std::optional<QString> email;
    std::optional<QString> plan;
    std::optional<QString> status;      ///< for example "active"
    std::optional<qint64> dailyMinutes; ///< minutes allowed a day
    std::optional<qint64> usedTodaySeconds;
    std::optional<qint64> remainingSeconds;

    bool operator==(const AccountInfo &) const = default;

    /// None when a fact is not of its type.
    static std::optional<AccountInfo> decode(const QByteArray &json);

    /// One line describing the account, such as "Pro plan, active. 30 minutes a day."
    QString summary() const;
};
