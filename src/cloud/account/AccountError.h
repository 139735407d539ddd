#pragma once

#include <QCoreApplication>
#include <QJsonObject>
#include <QString>

#include <optional>

struct TransportError;

/// The body of every refusal of the hosted service: `{"error": {"code", "message"}}`, every member optional.
struct ServiceErrorBody
{
    std::optional<QString> code;    ///< trimmed and lower-cased, never empty
    std::optional<QString> message; ///< as sent

    /// None when the error is not of this form.
    static std::optional<ServiceErrorBody> decode(const QJsonObject &body);
    /// Bytes that are no such body tell neither code nor message.
    static ServiceErrorBody decode(const QByteArray &json);
};

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

/// A known code decides before the status. `retryAfter` is that of the answer, in seconds.
Outcome outcome(int status, const ServiceErrorBody &body, std::optional<qint64> retryAfter);

/// "Signed out", with the service's code where it gave one.
AccountError signedOut(const std::optional<QString> &code);

} // namespace AccountFailure
