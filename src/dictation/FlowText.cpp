#include "dictation/FlowText.h"

#include "base/Text.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

QString FlowText::shortened(const QString &description)
{
    static constexpr int longest = 90;
    QString detail = description;
    detail = detail.replace(u'\n', u' ').trimmed();
    if (detail.isEmpty())
        return tr("unknown error");
    if (Text::firstCharacters(detail, longest) == detail)
        return detail;
    QString kept = Text::firstCharacters(detail, longest - 1);
    while (!kept.isEmpty() && Text::trimmedBlanks(kept.last(1)).isEmpty())
        kept.chop(1);
    return kept + u'…';
}

qint64 FlowText::elapsedMilliseconds(Clock::Duration elapsed)
{
    return std::llround(std::chrono::duration<double, std::milli>(elapsed).count());
}

double FlowText::meterLevel(double averagePower)
{
    if (!std::isfinite(averagePower))
        return 0;
    return std::clamp((averagePower + 50) / 50, 0.0, 1.0);
}
