#include "screens/dashboard/InsightsView.h"

#include "base/Clock.h"
#include "base/Text.h"
#include "history/HistoryStore.h"
#include "preferences/Prefs.h"
#include "screens/dashboard/StatsCard.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// The distance between marks: 1, 2 or 5 times a power of ten, so that about four cover the amount.
qint64 stepFor(qint64 amount)
{
    const double rough = std::max(static_cast<double>(amount) / 4, 1.0);
    const double power = std::pow(10, std::floor(std::log10(rough)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= rough)
            return std::llround(factor * power);
    return std::llround(10 * power);
}

template <typename Gadget>
QVariantList listOf(const QList<Gadget> &gadgets)
{
    QVariantList list;
    for (const Gadget &gadget : gadgets)
        list.append(QVariant::fromValue(gadget));
    return list;
}

} // namespace

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

WordsChart WordsChart::of(const QList<DayWords> &days)
{
    constexpr qint64 leastAxis = 10; // an axis is drawn over empty days too
    constexpr int daysPerMark = 2;
    const QLocale locale;
    qint64 most = leastAxis;
    qint64 total = 0;
    for (const DayWords &day : days) {
        most = std::max(most, day.words);
        total += day.words;
    }
    const qint64 step = stepFor(most);
    const qint64 top = (most + step - 1) / step * step;

    WordsChart chart;
    for (qint64 mark = 0; mark <= top; mark += step)
        chart.marks.append({locale.toString(mark), static_cast<double>(mark) / static_cast<double>(top)});
    for (qsizetype i = 0; i < days.size(); ++i) {
        const QString label = locale.toString(days[i].date.date(), u"d MMM"_s);
        const QString words =
            days[i].words == 1 ? tr("1 word") : tr("%1 words").arg(locale.toString(days[i].words));
        chart.bars.append({label, label + u": "_s + words,
                           static_cast<double>(days[i].words) / static_cast<double>(top),
                           i % daysPerMark == 0});
    }
    chart.summary = tr("%1 words in %2 days").arg(locale.toString(total)).arg(days.size());
    return chart;
}

QVariantList WordsChart::barList() const
{
    return listOf(bars);
}

QVariantList WordsChart::markList() const
{
    return listOf(marks);
}

InsightsView::InsightsView(HistoryStore &store, const Prefs &prefs, Clock &clock)
    : m_store(store),
      m_prefs(prefs),
      m_clock(clock)
{
    connect(&store, &HistoryStore::recordsChanged, this, &InsightsView::changed);
    connect(&m_prefs, &Prefs::providerChanged, this, &InsightsView::changed);
}

QVariantList InsightsView::figures() const
{
    const QLocale locale;
    const FlowStats stats = m_store.computeStats();
    return Figure::list({{locale.toString(stats.wordsToday), tr("Words today")},
                         {QString::number(stats.dictationsToday), tr("Dictations today")},
                         {locale.toString(stats.totalWords), tr("Total words")},
                         {StatsCard::wordsPerMinute(stats), tr("Average wpm")},
                         {QString::number(stats.dayStreak), tr("Day streak")},
                         {timeToPaste(), tr("Average time to paste")}});
}

QString InsightsView::timeToPaste() const
{
    const auto milliseconds = m_store.stats().averageTimeToPasteMs;
    return milliseconds ? tr("%1 s").arg(Decimal::format(static_cast<double>(*milliseconds) / 1000, 1))
                        : tr("not yet");
}

WordsChart InsightsView::chart() const
{
    return WordsChart::of(m_store.wordsPerDay(14));
}

UsageCard InsightsView::usage() const
{
    const Provider provider = m_prefs.provider();
    const HistoryStore::Usage usage = m_store.usage(provider, monthStart());
    return {usage.period, usage.allTime, provider};
}

QDateTime InsightsView::monthStart() const
{
    const QTimeZone zone = m_clock.timeZone();
    const QDate today = m_clock.now().toTimeZone(zone).date();
    const QDateTime start = QDate(today.year(), today.month(), 1).startOfDay(zone);
    return start.isValid() ? start : today.startOfDay(zone);
}
