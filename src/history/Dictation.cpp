#include "history/Dictation.h"

#include "base/Text.h"

using namespace Qt::StringLiterals;

namespace {

QString seconds(qint64 milliseconds)
{
    return Dictation::tr("%1 s").arg(Decimal::format(static_cast<double>(milliseconds) / 1000, 1));
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
    const QString transcribe = seconds(*transcribeMs);
    return cleanupMs ? tr("%1 transcribe, %2 cleanup").arg(transcribe, seconds(*cleanupMs))
                     : tr("%1 transcribe").arg(transcribe);
}
