#include "account/AccountInfo.h"

#include "account/AccountStatus.h"
#include "support/JsonMembers.h"
#include "support/Text.h"

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
        sentences << capitalized(*plan) + (status ? u" plan, "_s + *status + u'.' : u" plan."_s);
    else if (status && !status->isEmpty())
        sentences << u"Account "_s + *status + u'.';
    if (dailyMinutes)
        sentences << QString::number(*dailyMinutes) + u" minutes a day."_s;
    if (remainingSeconds)
        sentences << AccountStatus::minutesText(*remainingSeconds) + u" left today."_s;
    return sentences.isEmpty() ? u"Signed in."_s : sentences.join(u' ');
}
