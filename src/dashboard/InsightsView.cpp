#include "dashboard/InsightsView.h"

#include "dashboard/Figure.h"
#include "dashboard/StatsCard.h"
#include "history/HistoryStore.h"
#include "platform/Clock.h"
#include "settings/Defaults.h"
#include "settings/Prefs.h"
#include "support/Decimal.h"

#include <QLocale>

using namespace Qt::StringLiterals;

InsightsView::InsightsView(HistoryStore &store, Defaults &defaults, const Prefs &prefs, Clock &clock)
    : m_store(store),
      m_prefs(prefs),
      m_clock(clock)
{
    connect(&store, &HistoryStore::recordsChanged, this, &InsightsView::changed);
    connect(&defaults, &Defaults::changed, this, [this](const QString &key) {
        if (key == PrefsKey::provider)
            Q_EMIT changed();
    });
}

QVariantList InsightsView::figures() const
{
    const QLocale locale;
    const FlowStats stats = m_store.computeStats();
    return Figure::list({{locale.toString(stats.wordsToday), u"Words today"_s},
                         {QString::number(stats.dictationsToday), u"Dictations today"_s},
                         {locale.toString(stats.totalWords), u"Total words"_s},
                         {StatsCard::wordsPerMinute(stats), u"Average wpm"_s},
                         {QString::number(stats.dayStreak), u"Day streak"_s},
                         {timeToPaste(), u"Average time to paste"_s}});
}

QString InsightsView::timeToPaste() const
{
    const auto milliseconds = m_store.stats().averageTimeToPasteMs;
    return milliseconds ? Decimal::format(static_cast<double>(*milliseconds) / 1000, 1) + u" s"_s
                        : u"not yet"_s;
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
