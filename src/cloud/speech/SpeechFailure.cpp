#include "cloud/speech/SpeechFailure.h"

#include "base/Text.h"
#include "cloud/ServiceClient.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <initializer_list>

using namespace Qt::StringLiterals;

namespace {

bool containsAny(const QString &text, std::initializer_list<QLatin1StringView> words)
{
    return std::ranges::any_of(words, [&](QLatin1StringView word) { return text.contains(word); });
}

bool isTextOrAbsent(const QJsonValue &value)
{
    return value.isString() || value.isUndefined() || value.isNull();
}

QString detail(int status, const QByteArray &body)
{
    const QJsonValue error = QJsonDocument::fromJson(body).object().value("error"_L1);
    const QJsonValue message = error.toObject().value("message"_L1);
    const QJsonValue code = error.toObject().value("code"_L1);
    // A member of another type makes the body another form altogether.
    if (error.isObject() && isTextOrAbsent(message) && isTextOrAbsent(code)) {
        if (message.isString())
            return Text::quoted(message.toString());
        if (code.isString())
            return Text::quoted(code.toString());
    }
    return FlowError::tr("HTTP %1").arg(status);
}

} // namespace

FlowError ProviderFailure::failure(Provider provider, int status, const QByteArray &body)
{
    const QString name = Providers::displayName(provider);
    if (status == 401)
        return FlowError::api(FlowError::tr("%1: API key rejected. Check it in Settings.").arg(name));
    return FlowError::api(name + u": "_s + detail(status, body));
}

bool ProviderFailure::mentionsUnknownModel(const QString &message)
{
    const QString text = message.toLower();
    return text.contains("model"_L1) &&
           containsAny(text, {"not found"_L1, "not_found"_L1, "does not exist"_L1, "doesn't exist"_L1,
                              "decommissioned"_L1, "deprecated"_L1, "not supported"_L1, "no longer"_L1});
}

bool ProviderFailure::mentionsRejectedParameter(const QString &message)
{
    const QString text = message.toLower();
    if (containsAny(text, {"unsupported parameter"_L1, "unsupported value"_L1}))
        return true;
    return containsAny(text, {"reasoning_effort"_L1, "reasoning"_L1, "max_tokens"_L1, "temperature"_L1,
                              "parameter"_L1, "property"_L1, "argument"_L1, "field"_L1}) &&
           containsAny(text, {"unknown"_L1, "unrecognized"_L1, "unrecognised"_L1, "unsupported"_L1,
                              "not supported"_L1, "invalid"_L1, "unexpected"_L1, "additional properties"_L1,
                              "not permitted"_L1});
}

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

FlowError dailyMinutesUsedUp()
{
    return FlowError::api(FlowError::tr("Sayvane: daily minutes used up. Resets at midnight UTC."));
}

} // namespace

std::optional<std::chrono::milliseconds> ServiceFailure::accountRetryDelay(const ServiceRefusal &refusal)
{
    const int status = refusal.status;
    if (status != 502 && status != 504 && !(status == 429 && refusal.body.isRateLimit()))
        return std::nullopt;
    static constexpr double longest = 5.0;
    const double seconds = ServiceClient::seconds(refusal.retryAfter).value_or(0);
    if (!(seconds > 0))
        return 1500ms;
    return std::chrono::milliseconds(static_cast<qint64>(std::trunc(std::min(seconds, longest) * 1000)));
}

ServiceFailure::Outcome ServiceFailure::accountFailure(const ServiceRefusal &refusal)
{
    const int status = refusal.status;
    const auto &[code, message, remainingSeconds, isSound] = refusal.body;
    const FlowError noSession =
        FlowError::api(FlowError::tr("Sayvane: not signed in. Sign in under Settings."));
    if (code == "quota_exceeded"_L1)
        return {dailyMinutesUsedUp()};
    if (refusal.body.isRateLimit())
        return {FlowError::api(FlowError::tr("Sayvane: busy, try again in a moment."))};
    if (code == "unauthorized"_L1 || code == "invalid_token"_L1 || status == 401) {
        // A known code decides before the status; here both come to the same.
        return {noSession, true};
    }
    if (status == 429 && remainingSeconds == 0)
        return {dailyMinutesUsedUp()};
    if (status == 403)
        return {FlowError::api(FlowError::tr("Sayvane: this account cannot be used. Please get in touch."))};
    if (message)
        return {FlowError::api(u"Sayvane: "_s + Text::quoted(*message))};
    if (code)
        return {FlowError::api(u"Sayvane: "_s + Text::quoted(*code))};
    return {FlowError::api(FlowError::tr("Sayvane: HTTP %1").arg(status))};
}
