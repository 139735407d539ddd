#include "account/AccountFailure.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

enum class Wins { table, service };

struct Row
{
    QLatin1StringView code;
    QLatin1StringView message;
    Wins wins;
};

constexpr auto tooManyRequests = "Too many requests just now. Try again in a moment."_L1;

constexpr std::array rows{
    Row{"signups_closed"_L1, "Testing is full for now, ask Orrin for an invite."_L1, Wins::table},
    Row{"invalid_code"_L1, "That code is not right. Check it and try again."_L1, Wins::table},
    Row{"code_expired"_L1, "That code has expired. Ask for a new one."_L1, Wins::table},
    Row{"invalid_email"_L1, "That does not look like an email address."_L1, Wins::table},
    Row{"rate_limited"_L1, tooManyRequests, Wins::service},
    Row{"upstream_rate_limited"_L1, tooManyRequests, Wins::service},
    Row{"quota_exceeded"_L1, "Today's dictation allowance is used up. It resets at midnight UTC."_L1,
        Wins::service},
    Row{"refused"_L1, "That request was declined."_L1, Wins::service},
    Row{"labs_unavailable"_L1, "Labs is not available right now. Try again shortly."_L1, Wins::service},
    Row{"upstream_auth"_L1, "Sayvane's connection to that provider was rejected."_L1, Wins::service},
    Row{"upstream_error"_L1, "Could not reach that provider. Try again."_L1, Wins::service},
    Row{"upstream_unreachable"_L1, "Could not reach that provider. Try again."_L1, Wins::service},
    Row{"upstream_timeout"_L1, "That provider took too long to answer. Try again."_L1, Wins::service},
    Row{"bad_request"_L1, "That request could not be understood."_L1, Wins::service},
};

bool rejectsSession(const std::optional<QString> &code)
{
    return code == "unauthorized"_L1 || code == "unauthorised"_L1 || code == "invalid_token"_L1;
}

} // namespace

AccountError AccountFailure::signedOut(const std::optional<QString> &code)
{
    return {code.value_or(u"unauthorized"_s), u"Signed out. Sign in again in Settings."_s, std::nullopt};
}

AccountFailure::Outcome AccountFailure::outcome(int status, const ServiceErrorBody &body,
                                                std::optional<qint64> retryAfter)
{
    const auto &code = body.code;
    const QString told = body.message.value_or(QString()).trimmed();
    const auto toldOr = [&told](const QString &otherwise) { return told.isEmpty() ? otherwise : told; };

    if (rejectsSession(code))
        return {signedOut(code), true};
    if (const auto row = std::ranges::find_if(rows, [&](const Row &each) { return code == each.code; });
        row != rows.end()) {
        AccountError error{code, row->wins == Wins::service ? toldOr(row->message) : row->message,
                           std::nullopt};
        if (error.isRateLimited())
            error.retryAfterSeconds = retryAfter;
        return {error};
    }
    switch (status) {
    case 429:
        return {{code, toldOr(tooManyRequests), retryAfter}};
    case 403:
        return {{code, toldOr(u"This account cannot be used. Please get in touch."_s), std::nullopt}};
    case 401:
        return {signedOut(code), true};
    default:
        return {{code, toldOr(u"Sayvane: HTTP %1."_s.arg(status)), std::nullopt}};
    }
}
