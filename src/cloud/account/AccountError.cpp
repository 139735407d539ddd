#include "cloud/account/AccountError.h"

#include "base/HttpTransport.h"
#include "base/Text.h"
#include "cloud/account/AccountClient.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

enum class Wins { table, service };

struct Row
{
    QLatin1StringView code;
    const char *message;
    Wins wins;
};

constexpr auto tooManyRequests =
    QT_TRANSLATE_NOOP("AccountError", "Too many requests just now. Try again in a moment.");

constexpr std::array rows{
    Row{"signups_closed"_L1,
        QT_TRANSLATE_NOOP("AccountError", "Testing is full for now, ask Orrin for an invite."), Wins::table},
    Row{"invalid_code"_L1,
        QT_TRANSLATE_NOOP("AccountError", "That code is not right. Check it and try again."), Wins::table},
    Row{"code_expired"_L1, QT_TRANSLATE_NOOP("AccountError", "That code has expired. Ask for a new one."),
        Wins::table},
    Row{"invalid_email"_L1, QT_TRANSLATE_NOOP("AccountError", "That does not look like an email address."),
        Wins::table},
    Row{"rate_limited"_L1, tooManyRequests, Wins::service},
    Row{"upstream_rate_limited"_L1, tooManyRequests, Wins::service},
    Row{"quota_exceeded"_L1,
        QT_TRANSLATE_NOOP("AccountError",
                          "Today's dictation allowance is used up. It resets at midnight UTC."),
        Wins::service},
    Row{"refused"_L1, QT_TRANSLATE_NOOP("AccountError", "That request was declined."), Wins::service},
    Row{"labs_unavailable"_L1,
        QT_TRANSLATE_NOOP("AccountError", "Labs is not available right now. Try again shortly."),
        Wins::service},
    Row{"upstream_auth"_L1,
        QT_TRANSLATE_NOOP("AccountError", "Sayvane's connection to that provider was rejected."),
        Wins::service},
    Row{"upstream_error"_L1, QT_TRANSLATE_NOOP("AccountError", "Could not reach that provider. Try again."),
        Wins::service},
    Row{"upstream_unreachable"_L1,
        QT_TRANSLATE_NOOP("AccountError", "Could not reach that provider. Try again."), Wins::service},
    Row{"upstream_timeout"_L1,
        QT_TRANSLATE_NOOP("AccountError", "That provider took too long to answer. Try again."),
        Wins::service},
    Row{"bad_request"_L1, QT_TRANSLATE_NOOP("AccountError", "That request could not be understood."),
        Wins::service},
};

bool rejectsSession(const std::optional<QString> &code)
{
    return code == "unauthorized"_L1 || code == "unauthorised"_L1 || code == "invalid_token"_L1;
}

} // namespace

AccountError AccountFailure::signedOut(const std::optional<QString> &code)
{
    return {code.value_or(u"unauthorized"_s), AccountError::tr("Signed out. Sign in again in Settings."),
            std::nullopt};
}

AccountFailure::Outcome AccountFailure::outcome(const ServiceRefusal &refusal)
{
    const auto &code = refusal.body.code;
    const auto retryAfter = AccountClient::seconds(refusal.retryAfter);
    const QString told = Text::quoted(refusal.body.message.value_or(QString()).trimmed());
    const auto toldOr = [&told](const QString &otherwise) { return told.isEmpty() ? otherwise : told; };

    if (rejectsSession(code))
        return {signedOut(code), true};
    if (const auto row = std::ranges::find_if(rows, [&](const Row &each) { return code == each.code; });
        row != rows.end()) {
        const QString message = AccountError::tr(row->message);
        AccountError error{code, row->wins == Wins::service ? toldOr(message) : message, std::nullopt};
        if (error.isRateLimited())
            error.retryAfterSeconds = retryAfter;
        return {error};
    }
    switch (refusal.status) {
    case 429:
        return {{code, toldOr(AccountError::tr(tooManyRequests)), retryAfter}};
    case 403:
        return {{code, toldOr(AccountError::tr("This account cannot be used. Please get in touch.")),
                 std::nullopt}};
    case 401:
        return {signedOut(code), true};
    default:
        return {{code, toldOr(AccountError::tr("Sayvane: HTTP %1.").arg(refusal.status)), std::nullopt}};
    }
}

bool AccountError::isRateLimited() const
{
    return code == "rate_limited"_L1 || code == "upstream_rate_limited"_L1;
}

AccountError AccountError::network(const TransportError &why)
{
    if (why.kind == TransportError::Kind::tooLarge)
        return unreadable();
    return {u"network"_s, tr("Could not reach Sayvane. Check the network and try again."), std::nullopt};
}

AccountError AccountError::invalidAddress()
{
    return {std::nullopt, tr("Sayvane: invalid API address"), std::nullopt};
}

AccountError AccountError::badResponse(const QString &message)
{
    return {u"bad_response"_s, message, std::nullopt};
}

AccountError AccountError::unreadable()
{
    return badResponse(tr("Sayvane sent something this app could not read."));
}

AccountError AccountError::cancelled()
{
    return {u"cancelled"_s, u"Cancelled."_s, std::nullopt};
}
