#include "account/AccountInfo.h"

#include "account/AccountStatus.h"
#include "support/Text.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

QString capitalized(const QString &text)
{
    const QString first = Text::firstCharacters(text, 1);
    return first.toUpper() + text.sliced(first.size());
}

} // namespace

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
