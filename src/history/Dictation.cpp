#include "history/Dictation.h"

#include "support/Decimal.h"
#include "support/Text.h"

using namespace Qt::StringLiterals;

namespace {

QString seconds(qint64 milliseconds)
{
    return Decimal::format(static_cast<double>(milliseconds) / 1000, 1) + u" s"_s;
}

} // namespace

qint64 Dictation::wordCountOf(const QString &text)
{
    return Text::wordCount(text);
}

std::optional<QString> Dictation::timingSummary() const
{
    if (!transcribeMs)
        return std::nullopt;
    QString summary = seconds(*transcribeMs) + u" transcribe"_s;
    if (cleanupMs)
        summary += u", "_s + seconds(*cleanupMs) + u" cleanup"_s;
    return summary;
}
