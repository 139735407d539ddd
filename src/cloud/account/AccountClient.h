#pragma once

#include "cloud/ServiceClient.h"
#include "cloud/account/AccountError.h"
#include "cloud/account/AccountInfo.h"
#include "cloud/account/AccountSession.h"
#include "cloud/account/DeviceSession.h"

#include <QCoroTask>
#include <QJsonObject>
#include <QString>

#include <expected>
#include <optional>
#include <stop_token>

class AccountSessionStore;
class AccountStatus;
class Clock;
class Prefs;

/// Speaks to the hosted service's account endpoints, and owns the rules by which a refusal becomes a
/// sentence.
///
/// It keeps no state of its own. A stop request ends an operation early with an error that nobody should
/// show; what the operation would have published is then not published.
class AccountClient
{
public:
    struct Collaborators
    {
        const Prefs &prefs;
        AccountSessionStore &sessions;
        AccountStatus &account;
        HttpTransport &http;
        Clock &clock;
    };
    template <typename T>
    using Result = std::expected<T, AccountError>;

    /// What a request carries: this computer's session, which a refusal ends, or none that could end.
    enum class Credential { none, session };

    explicit AccountClient(const Collaborators &with);

    /// Has the service send a six-digit code by e-mail; returns how long it lasts, in seconds.
    QCoro::Task<Result<qint64>> requestCode(QString email, QString device, std::stop_token stop);
    QCoro::Task<Result<AccountSession>> verify(QString email, QString code, QString device,
                                               std::stop_token stop);
    /// What the service says of the account now; the account's status learns it too.
    QCoro::Task<Result<AccountInfo>> me(QString token, std::stop_token stop);
    QCoro::Task<Result<void>> logout(QString token, std::stop_token stop);
    /// The devices that are signed in, in the service's order.
    QCoro::Task<Result<QList<DeviceSession>>> sessions(QString token, std::stop_token stop);
    QCoro::Task<Result<void>> revokeSession(QString token, QString id, std::stop_token stop);

    /// A request below the service's base address, with a bearer token and a JSON body where given.
    Result<HttpRequest> request(const QByteArray &method, const QString &path,
                                const std::optional<QString> &token,
                                const std::optional<QJsonObject> &body) const;
    /// Performs a request; a read that a gateway refused is tried once more after a second. A refusal that
    /// comes when the session is another, or over, ends none.
    QCoro::Task<Result<HttpResponse>> send(HttpRequest request, Credential credential, bool mayRetry,
                                           std::stop_token stop);
    /// The same by another rule.
    QCoro::Task<Result<HttpResponse>> send(HttpRequest request, Credential credential,
                                           ServiceClient::RetryRule rule, std::stop_token stop);
    /// What a refusal means; with the `session` credential an unauthorized one signs this computer out.
    AccountError failure(const ServiceRefusal &refusal, Credential credential);
    AccountError unauthorized(const std::optional<QString> &code, Credential credential);

    /// The service's own tokens begin with "svs_"; others end no session of this computer.
    static Credential credentialOf(const QString &token);
    /// Trimmed and in lower case.
    static QString normalisedEmail(const QString &text);
    static bool looksLikeEmail(const QString &text);
    /// An ISO 8601 internet date-time with a zone, with or without fractions of a second.
    static std::optional<QDateTime> date(const std::optional<QString> &text);
    /// A device's name as the service takes it: 64 characters at most, never empty.
    static QString trim(const QString &device);
    /// The "Retry-After" header in whole seconds, rounded up, an hour at most; none for a date.
    static std::optional<qint64> seconds(const std::optional<QString> &retryAfter);

private:
    const Prefs &m_prefs;
    AccountStatus &m_account;
    ServiceClient m_service;
};
