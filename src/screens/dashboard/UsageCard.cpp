#include "screens/dashboard/UsageCard.h"

#include "base/Decimal.h"
#include "screens/dashboard/Figure.h"

#include <QLocale>

#include <cmath>

using namespace Qt::StringLiterals;

QString UsageCard::minutes(const UsageSummary &summary)
{
    const double minutes = summary.seconds / 60;
    return tr("%1 min").arg(minutes < 10 ? Decimal::format(minutes, 1)
                                         : QString::number(std::llround(minutes)));
}

QString UsageCard::costText(const UsageSummary &summary)
{
    if (summary.costUSD > 0 && summary.costUSD < 0.005)
        return tr("under $0.01");
    return u'$' + Decimal::format(summary.costUSD, 2);
}

QVariantList UsageCard::figures(const UsageSummary &summary) const
{
    QList<Figure> figures{{minutes(summary), tr("of audio sent")},
                          {QLocale().toString(summary.dictations),
                           summary.dictations == 1 ? tr("dictation") : tr("dictations")}};
    if (provider != Provider::sayvane)
        figures.append({costText(summary), tr("estimate")});
    return Figure::list(figures);
}

QString UsageCard::included() const
{
    return provider == Provider::sayvane ? tr("Included in your plan") : QString();
}

QStringList UsageCard::footnotes() const
{
    if (provider == Provider::sayvane)
        return {tr("Included in your plan. Minutes count against your daily allowance, which resets at "
                   "midnight UTC.")};
    QStringList footnotes{tr("Estimated from published %1 rates and the audio and word counts held "
                             "locally. Not a bill.")
                              .arg(Providers::displayName(provider))};
    if (provider == Provider::groq)
        footnotes.append(tr("Groq free tier: no charge within rate limits; add a card at "
                            "https://console.groq.com/settings/billing only if you exceed them."));
    return footnotes;
}
