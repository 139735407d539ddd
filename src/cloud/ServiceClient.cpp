#include "cloud/ServiceClient.h"

#include "base/Json.h"
#include "base/Sleep.h"
#include "base/Text.h"
#include "cloud/account/AccountStatus.h"

#include <QJsonDocument>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

AccountErrorBody AccountErrorBody::decode(const QByteArray &json)
{
    JsonMembers members(QJsonDocument::fromJson(json).object());
    JsonMembers error(members.object("error"_L1).value_or(QJsonObject()));
    const QString code = error.text("code"_L1).value_or(QString()).trimmed().toLower();
    const auto message = error.text("message"_L1);
    AccountErrorBody body;
    if (members.isSound() && error.isSound()) {
        body.code = code.isEmpty() ? std::nullopt : std::optional(code);
        body.message = message;
    }
    body.remainingSeconds = members.wholeNumber("remainingSeconds"_L1);
    body.isSound = members.isSound() && error.isSound();
    return body;
}

bool AccountErrorBody::isRateLimit() const
{
    return code == "rate_limited"_L1 || code == "upstream_rate_limited"_L1;
}

QCoro::Task<ServiceClient::Answer> ServiceClient::send(HttpRequest request, RetryRule rule,
                                                       std::stop_token stop)
{
    const TransportError cancelled{TransportError::Kind::cancelled, {}};
    const int asked = session();
    for (bool mayRetry = rule.pause != nullptr;; mayRetry = false) {
        const auto response = co_await m_needs.http.send(request, stop);
        if (stop.stop_requested())
            co_return std::unexpected(cancelled);
        if (!response)
            co_return std::unexpected(response.error());
        if (response->isSuccess())
            co_return *response;
        ServiceRefusal refusal{.status = response->status,
                               .body = AccountErrorBody::decode(response->body),
                               .retryAfter = response->header("Retry-After")};
        const auto pause = mayRetry ? rule.pause(refusal) : std::nullopt;
        if (!pause) {
            refusal.isCurrent = session() == asked;
            co_return std::unexpected(refusal);
        }
        co_await sleepFor(m_needs.clock, *pause, stop);
        if (stop.stop_requested() && !rule.stopsWaitingOnly)
            co_return std::unexpected(cancelled);
    }
}

std::optional<double> ServiceClient::seconds(const std::optional<QString> &retryAfter)
{
    static const QRegularExpression decimal(uR"(\A[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?\z)"_s);
    const QString text = Text::trimmedBlanks(retryAfter.value_or(QString()));
    return decimal.match(text).hasMatch() ? std::optional(text.toDouble()) : std::nullopt;
}

int ServiceClient::session() const
{
    return m_needs.account.session();
}

bool ServiceClient::dropSession()
{
    return m_needs.account.dropRejectedSession(m_needs.sessions);
}
