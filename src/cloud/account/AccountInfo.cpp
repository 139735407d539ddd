#include "cloud/account/AccountInfo.h"

#include "base/Json.h"
#include "base/Text.h"
#include "cloud/account/AccountStatus.h"

#include <QJsonDocument>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

QString capitalized(const QString &text)
{
    const QString first = Text::firstCharacters(text, 1);
    return first.toUpper() + text.sliced(first.size());
}

} // namespace

std::optional<AccountInfo> AccountInfo::decode(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    JsonMembers members(document.object());
    const AccountInfo info{.email = members.text("email"_L1),
                           .plan = members.text("plan"_L1),
                           .status = members.text("status"_L1),
                           .dailyMinutes = members.wholeNumber("dailyMinutes"_L1),
                           .usedTodaySeconds = members.wholeNumber("usedTodaySeconds"_L1),
                           .remainingSeconds = members.wholeNumber("remainingSeconds"_L1)};
    return document.isObject() && members.isSound() ? std::optional(info) : std::nullopt;
}

QString AccountInfo::summary() const
{
    QStringList sentences;
    if (plan && !plan->isEmpty())
        sentences << (status ? AccountStatus::tr("%1 plan, %2.")
                                   .arg(capitalized(Text::quoted(*plan)), Text::quoted(*status))
                             : AccountStatus::tr("%1 plan.").arg(capitalized(Text::quoted(*plan))));
    else if (status && !status->isEmpty())
        sentences << AccountStatus::tr("Account %1.").arg(Text::quoted(*status));
    if (dailyMinutes)
        sentences << AccountStatus::tr("%1 minutes a day.").arg(*dailyMinutes);
    if (remainingSeconds)
        sentences << AccountStatus::tr("%1 left today.").arg(AccountStatus::minutesText(*remainingSeconds));
    return sentences.isEmpty() ? AccountStatus::tr("Signed in.") : sentences.join(u' ');
}
