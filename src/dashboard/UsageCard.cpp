#include "dashboard/UsageCard.h"

#include "dashboard/Figure.h"
#include "support/Decimal.h"

#include <QLocale>

#include <cmath>

using namespace Qt::StringLiterals;

QString UsageCard::minutes(const UsageSummary &summary)
{
    const double minutes = summary.seconds / 60;
    return (minutes < 10 ? Decimal::format(minutes, 1) : QString::number(std::llround(minutes))) + u" min"_s;
}

QString UsageCard::costText(const UsageSummary &summary)
{
    if (summary.costUSD > 0 && summary.costUSD < 0.005)
        return u"under $0.01"_s;
    return u'$' + Decimal::format(summary.costUSD, 2);
}

QVariantList UsageCard::figures(const UsageSummary &summary) const
{
    QList<Figure> figures{
        {minutes(summary), u"of audio sent"_s},
        {QLocale().toString(summary.dictations), summary.dictations == 1 ? u"dictation"_s : u"dictations"_s}};
    if (provider != Provider::sayvane)
        figures.append({costText(summary), u"estimate"_s});
    return Figure::list(figures);
}

QString UsageCard::included() const
{
    return provider == Provider::sayvane ? u"Included in your plan"_s : QString();
}

QStringList UsageCard::footnotes() const
{
    if (provider == Provider::sayvane)
        return {
            u"Included in your plan. Minutes count against your daily allowance, which resets at midnight UTC."_s};
    QStringList footnotes{u"Estimated from published %1 rates and the audio and word counts held locally. "
                          "Not a bill."_s.arg(Providers::displayName(provider))};
    if (provider == Provider::groq)
        footnotes.append(u"Groq free tier: no charge within rate limits; add a card at "
                         "https://console.groq.com/settings/billing only if you exceed them."_s);
    return footnotes;
}
