#include "cloud/account/AccountSession.h"

#include "base/Json.h"
#include "cloud/account/AccountClient.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

std::expected<AccountSession, AccountError> AccountSession::decode(const QByteArray &json,
                                                                   const QString &typedEmail)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    JsonMembers answer(document.object());
    JsonMembers user(answer.object("user"_L1).value_or(QJsonObject()));
    const AccountSession session{
        .token = answer.text("token"_L1).value_or(QString()).trimmed(),
        .email = user.text("email"_L1).value_or(AccountClient::normalisedEmail(typedEmail)),
        .plan = user.text("plan"_L1).value_or(u"trial"_s),
        .dailyMinutes = user.wholeNumber("dailyMinutes"_L1).value_or(0),
        .expiresAt = AccountClient::date(answer.text("expiresAt"_L1))};
    if (!document.isObject() || !answer.isSound() || !user.isSound())
        return std::unexpected(AccountError::unreadable());
    if (session.token.isEmpty())
        return std::unexpected(AccountError::badResponse(
            AccountError::tr("Sayvane did not send a session back. Try signing in again.")));
    return session;
}
