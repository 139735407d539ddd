#pragma once

#include "base/HttpTransport.h"

#include <QByteArray>
#include <QCoroTask>
#include <QString>

#include <chrono>
#include <expected>
#include <functional>
#include <optional>
#include <stop_token>
#include <variant>

class AccountSessionStore;
class AccountStatus;
class Clock;

/// The body of a refusal: `{"error": {"code", "message"}, "remainingSeconds"}`, every member optional. One of
/// another type than it should be counts as absent, and an error with such a member tells nothing.
struct AccountErrorBody
{
    std::optional<QString> code;    ///< trimmed and lower-cased, never empty
    std::optional<QString> message; ///< as sent
    std::optional<qint64> remainingSeconds;
    bool isSound = true; ///< no member was of another type

    static AccountErrorBody decode(const QByteArray &json);
    bool isRateLimit() const;
};

/// What the hosted service said instead of an answer.
struct ServiceRefusal
{
    int status = 0;
    AccountErrorBody body;
    std::optional<QString> retryAfter; ///< the header "Retry-After"
    bool isCurrent = true;             ///< the session that the request began under still lasts
};

/// Speaks to the hosted service, for all who have something to ask of it.
class ServiceClient
{
public:
    struct Needs
    {
        AccountSessionStore &sessions;
        AccountStatus &account;
        HttpTransport &http;
        Clock &clock;
    };
    using Failure = std::variant<TransportError, ServiceRefusal>;
    using Answer = std::expected<HttpResponse, Failure>;
    struct RetryRule
    {
        /// How long to wait until a refused request is sent once more; none for a refusal that is final.
        std::function<std::optional<std::chrono::milliseconds>(const ServiceRefusal &)> pause;
        bool stopsWaitingOnly = false; ///< a stop request in that time sends it at once
    };

    explicit ServiceClient(const Needs &needs) : m_needs(needs) {}

    /// Performs a request, and once more where the rule says so; without a rule never. A stop request ends it
    /// early as `TransportError::Kind::cancelled`.
    QCoro::Task<Answer> send(HttpRequest request, RetryRule rule, std::stop_token stop);

    /// The "Retry-After" header in seconds, fractions allowed and infinity possible; none for a date.
    static std::optional<double> seconds(const std::optional<QString> &retryAfter);

    /// The number of the session that requests begun now belong to.
    int session() const;
    /// The service accepts this computer's session no more; false where none is stored.
    bool dropSession();

private:
    Needs m_needs;
};
