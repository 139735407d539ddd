#pragma once

#include <QCoreApplication>
#include <QString>

#include <optional>

struct ServiceRefusal;
struct TransportError;

/// Why a request to the account's service failed, with the one complete sentence that the user sees.
struct AccountError
{
    /// The service's own code, trimmed and lower-cased, or one of ours: "network", "bad_response",
    /// "unauthorized", "cancelled".
    std::optional<QString> code;
    QString message;
    std::optional<qint64> retryAfterSeconds; ///< of rate limits only, when the service told

    bool operator==(const AccountError &) const = default;

    bool isRateLimited() const;

    static AccountError network(const TransportError &why);
    static AccountError invalidAddress();
    static AccountError badResponse(const QString &message);
    /// The answer is not what the protocol says.
    static AccountError unreadable();
    /// The one who asked no longer wants to know; nobody should show it.
    static AccountError cancelled();

    Q_DECLARE_TR_FUNCTIONS(AccountError)
};

/// What a refusal by the account's service means.
namespace AccountFailure {

/// What follows from an answer that is final.
struct Outcome
{
    AccountError error;
    bool rejectsSession = false; ///< whatever session the request carried is no longer valid
};

/// A known code decides before the status.
Outcome outcome(const ServiceRefusal &refusal);

/// "Signed out", with the service's code where it gave one.
AccountError signedOut(const std::optional<QString> &code);

} // namespace AccountFailure
