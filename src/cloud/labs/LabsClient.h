#pragma once

#include "cloud/account/AccountClient.h"
#include "cloud/account/AccountError.h"
#include "cloud/labs/LabsMode.h"
#include "cloud/labs/LabsProvider.h"

#include <QByteArray>
#include <QCoroTask>
#include <QJsonObject>
#include <QObject>
#include <QString>

#include <chrono>
#include <expected>
#include <optional>
#include <stop_token>

class Credentials;

/// What an assistant answered.
struct LabsAnswer
{
    Q_GADGET
    Q_PROPERTY(QString text MEMBER text CONSTANT)
    Q_PROPERTY(QString provider MEMBER provider CONSTANT)
    Q_PROPERTY(QString model MEMBER model CONSTANT)
public:
    QString text;     ///< trimmed, never empty
    QString provider; ///< who answered, as the service names it
    QString model;    ///< empty when the service names none
    std::optional<qint64> inputTokens;
    std::optional<qint64> outputTokens;

    bool operator==(const LabsAnswer &) const = default;

    /// The answer in the service's reply to a request for `asked`.
    static std::expected<LabsAnswer, AccountError> decode(const QByteArray &json, LabsProvider asked);
};

/// Has the hosted service pass a prompt to an outside assistant.
///
/// It keeps no state. A stop request ends an operation early with an error that nobody should show.
class LabsClient
{
public:
    template <typename T>
    using Result = AccountClient::Result<T>;

    LabsClient(AccountClient &account, const Credentials &credentials)
        : m_account(account),
          m_credentials(credentials)
    {
    }

    /// Which assistants the service offers now.
    QCoro::Task<Result<LabsProviders>> providers(std::stop_token stop);

    /// The prompt is cut to 8000 characters, the context to 4000; an empty language means any.
    QCoro::Task<Result<LabsAnswer>> answer(QString prompt, LabsProvider provider, LabsMode mode,
                                           QString language, QString context, std::stop_token stop);

    /// Performs a request; a rate limit or time-out of the assistant is tried once more after a pause.
    QCoro::Task<Result<HttpResponse>> send(HttpRequest request, bool usingSession, bool mayRetry,
                                           std::stop_token stop);

    /// How long to wait before the one retry, for a normalised code; none when the answer is final.
    static std::optional<std::chrono::milliseconds> retryDelay(int status, const std::optional<QString> &code,
                                                               std::optional<qint64> retryAfter);
    /// The "Retry-After" header in whole seconds.
    static std::optional<qint64> seconds(const std::optional<QString> &retryAfter)
    {
        return AccountClient::seconds(retryAfter);
    }

private:
    QCoro::Task<Result<HttpResponse>> exchange(QByteArray method, QString path,
                                               std::optional<QJsonObject> body, std::stop_token stop);

    AccountClient &m_account;
    const Credentials &m_credentials;
};
