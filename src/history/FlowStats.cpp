#include "history/FlowStats.h"

#include <QSet>

FlowStats FlowStats::compute(const QList<Dictation> &records, const QDateTime &now, const QTimeZone &zone)
{
    FlowStats stats;
    const QDate today = now.toTimeZone(zone).date();
    const QDateTime todayBegins = today.startOfDay(zone).toUTC();
    const QDateTime tomorrowBegins = today.addDays(1).startOfDay(zone).toUTC();
    double timedSeconds = 0;
    qint64 timedWords = 0;
    qint64 pasteMs = 0;
    qint64 pastes = 0;
    for (const Dictation &record : records) {
        stats.totalWords += record.wordCount;
        if (record.durationSeconds > 0) {
            timedSeconds += record.durationSeconds;
            timedWords += record.wordCount;
        }
        if (record.date >= todayBegins && record.date < tomorrowBegins) {
            stats.wordsToday += record.wordCount;
            ++stats.dictationsToday;
        }
        if (record.transcribeMs) {
            pasteMs += *record.transcribeMs + record.cleanupMs.value_or(0);
            ++pastes;
        }
    }
    if (timedSeconds > 0)
        stats.averageWordsPerMinute = static_cast<double>(timedWords) / (timedSeconds / 60);
    if (pastes > 0)
        stats.averageTimeToPasteMs = pasteMs / pastes;
    stats.dayStreak = dayStreakOf(records, now, zone);
    return stats;
}

int FlowStats::dayStreakOf(const QList<Dictation> &records, const QDateTime &now, const QTimeZone &zone)
{
    QSet<QDate> days;
    // Neighbours are mostly of one day, and asking the calendar costs far more than comparing.
    QDateTime dayBegins;
    QDateTime dayEnds;
    for (const Dictation &record : records) {
        if (dayBegins.isValid() && record.date >= dayBegins && record.date < dayEnds)
            continue;
        const QDate day = record.date.toTimeZone(zone).date();
        days.insert(day);
        dayBegins = day.startOfDay(zone).toUTC();
        dayEnds = day.addDays(1).startOfDay(zone).toUTC();
    }
    QDate cursor = now.toTimeZone(zone).date();
    if (!days.contains(cursor))
        cursor = cursor.addDays(-1);
    int streak = 0;
    for (; days.contains(cursor); cursor = cursor.addDays(-1))
        ++streak;
    return streak;
}
