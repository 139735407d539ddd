#include "cloud/labs/LabsClient.h"

#include "base/Json.h"
#include "base/Text.h"
#include "cloud/account/Credentials.h"

#include <QJsonDocument>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto requestTimeout = 45s;
constexpr auto usualPause = 1500ms;
constexpr qint64 longestPause = 10; // seconds
constexpr int longestPrompt = 8000;
constexpr int longestContext = 4000;

QJsonObject question(const QString &prompt, LabsProvider provider, LabsMode mode, const QString &language,
                     const QString &context)
{
    QJsonObject body{{u"prompt"_s, Text::firstCharacters(prompt, longestPrompt)},
                     {u"provider"_s, LabsProviderNames::rawValue(provider)},
                     {u"mode"_s, LabsModes::rawValue(mode)}};
    if (const QString code = language.trimmed(); !code.isEmpty())
        body.insert(u"language"_s, code);
    if (const QString text = context.trimmed(); !text.isEmpty())
        body.insert(u"context"_s, Text::firstCharacters(text, longestContext));
    return body;
}

} // namespace

std::expected<LabsAnswer, AccountError> LabsAnswer::decode(const QByteArray &json, LabsProvider asked)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    JsonMembers reply(document.object());
    const LabsAnswer answer{.text = reply.text("text"_L1).value_or(QString()).trimmed(),
                            .provider =
                                reply.text("provider"_L1).value_or(LabsProviderNames::rawValue(asked)),
                            .model = reply.text("model"_L1).value_or(QString()),
                            .inputTokens = reply.wholeNumber("inputTokens"_L1),
                            .outputTokens = reply.wholeNumber("outputTokens"_L1)};
    if (!document.isObject() || !reply.isSound())
        return std::unexpected(AccountError::unreadable());
    if (answer.text.isEmpty())
        return std::unexpected(
            AccountError::badResponse(AccountError::tr("Sayvane sent an empty answer back.")));
    return answer;
}

QCoro::Task<LabsClient::Result<LabsProviders>> LabsClient::providers(std::stop_token stop)
{
    const auto reply = co_await exchange("GET", u"/v1/labs/providers"_s, std::nullopt, stop);
    if (!reply)
        co_return std::unexpected(reply.error());
    const auto offered = LabsProviders::decode(reply->body);
    if (!offered)
        co_return std::unexpected(AccountError::unreadable());
    co_return *offered;
}

QCoro::Task<LabsClient::Result<LabsAnswer>> LabsClient::answer(QString prompt, LabsProvider provider,
                                                               LabsMode mode, QString language,
                                                               QString context, std::stop_token stop)
{
    const QJsonObject body = question(prompt, provider, mode, language, context);
    const auto reply = co_await exchange("POST", u"/v1/labs/answer"_s, body, stop);
    if (!reply)
        co_return std::unexpected(reply.error());
    co_return LabsAnswer::decode(reply->body, provider);
}

QCoro::Task<LabsClient::Result<HttpResponse>>
LabsClient::exchange(QByteArray method, QString path, std::optional<QJsonObject> body, std::stop_token stop)
{
    const auto token = co_await m_credentials.apiKey(Provider::sayvane, stop);
    if (stop.stop_requested())
        co_return std::unexpected(AccountError::cancelled());
    if (!token)
        co_return std::unexpected(AccountError{std::nullopt, token.error().description, std::nullopt});
    auto request = m_account.request(method, path, *token, body);
    if (!request)
        co_return std::unexpected(request.error());
    request->timeout = requestTimeout;
    const bool usingSession = AccountClient::credentialOf(*token) == AccountClient::Credential::session;
    co_return co_await send(*request, usingSession, true, stop);
}

QCoro::Task<LabsClient::Result<HttpResponse>> LabsClient::send(HttpRequest request, bool usingSession,
                                                               bool mayRetry, std::stop_token stop)
{
    ServiceClient::RetryRule rule;
    if (mayRetry)
        rule.pause = [](const ServiceRefusal &refusal) {
            return retryDelay(refusal.status, refusal.body.code, seconds(refusal.retryAfter));
        };
    return m_account.send(request,
                          usingSession ? AccountClient::Credential::session : AccountClient::Credential::none,
                          rule, stop);
}

std::optional<std::chrono::milliseconds>
LabsClient::retryDelay(int status, const std::optional<QString> &code, std::optional<qint64> retryAfter)
{
    const bool isRateLimit =
        status == 429 && (code == "rate_limited"_L1 || code == "upstream_rate_limited"_L1);
    const bool isTimeout = status == 504 && code == "upstream_timeout"_L1;
    if (!isRateLimit && !isTimeout)
        return std::nullopt;
    if (retryAfter.value_or(0) < 1)
        return usualPause;
    return std::chrono::seconds(std::min(*retryAfter, longestPause));
}
