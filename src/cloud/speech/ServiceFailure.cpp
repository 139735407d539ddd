#include "cloud/speech/ServiceFailure.h"

#include "base/Json.h"
#include "base/Text.h"
#include "cloud/account/AccountError.h"

#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

FlowError dailyMinutesUsedUp()
{
    return FlowError::api(FlowError::tr("Sayvane: daily minutes used up. Resets at midnight UTC."));
}

bool isRateLimit(const std::optional<QString> &code)
{
    return code == "rate_limited"_L1 || code == "upstream_rate_limited"_L1;
}

} // namespace

std::optional<AccountErrorBody> AccountErrorBody::decode(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    const auto error = ServiceErrorBody::decode(document.object());
    JsonMembers members(document.object());
    const auto remainingSeconds = members.wholeNumber("remainingSeconds"_L1);
    if (!document.isObject() || !error || !members.isSound())
        return std::nullopt;
    return AccountErrorBody{error->code, error->message, remainingSeconds};
}

std::optional<std::chrono::milliseconds>
ServiceFailure::accountRetryDelay(int status, const std::optional<QString> &code,
                                  const std::optional<QString> &retryAfter)
{
    if (status != 502 && status != 504 && !(status == 429 && isRateLimit(code)))
        return std::nullopt;
    static constexpr double longest = 5.0;
    static const QRegularExpression decimal(uR"(\A[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?\z)"_s);
    const QString text = Text::trimmedBlanks(retryAfter.value_or(QString()));
    const double seconds = decimal.match(text).hasMatch() ? text.toDouble() : 0;
    if (!(seconds > 0))
        return 1500ms;
    return std::chrono::milliseconds(static_cast<qint64>(std::trunc(std::min(seconds, longest) * 1000)));
}

ServiceFailure::Outcome ServiceFailure::accountFailure(int status,
                                                       const std::optional<AccountErrorBody> &body)
{
    const FlowError noSession =
        FlowError::api(FlowError::tr("Sayvane: not signed in. Sign in under Settings."));
    const auto code = body ? body->code : std::nullopt;
    if (code == "quota_exceeded"_L1)
        return {dailyMinutesUsedUp()};
    if (isRateLimit(code))
        return {FlowError::api(FlowError::tr("Sayvane: busy, try again in a moment."))};
    if (code == "unauthorized"_L1 || code == "invalid_token"_L1 || status == 401) {
        // A known code decides before the status; here both come to the same.
        return {noSession, true};
    }
    if (status == 429 && body && body->remainingSeconds == 0)
        return {dailyMinutesUsedUp()};
    if (status == 403)
        return {FlowError::api(FlowError::tr("Sayvane: this account cannot be used. Please get in touch."))};
    if (body && body->message)
        return {FlowError::api(u"Sayvane: "_s + Text::quoted(*body->message))};
    if (code)
        return {FlowError::api(u"Sayvane: "_s + Text::quoted(*code))};
    return {FlowError::api(FlowError::tr("Sayvane: HTTP %1").arg(status))};
}
