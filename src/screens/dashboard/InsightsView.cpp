#include "screens/dashboard/InsightsView.h"

#include "base/Clock.h"
#include "base/Decimal.h"
#include "history/HistoryStore.h"
#include "preferences/Prefs.h"
#include "screens/dashboard/Figure.h"
#include "screens/dashboard/StatsCard.h"

#include <QLocale>

using namespace Qt::StringLiterals;

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
