#include "history/FlowStats.h"

#include "history/LocalDays.h"

#include <QSet>

FlowStats FlowStats::compute(const QList<Dictation> &records, const QDateTime &now, const QTimeZone &zone)
{
    FlowStats stats;
    LocalDays days(zone);
    const qint64 today = days.dayOf(now);
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
        if (days.dayOf(record.date) == today) {
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
    LocalDays days(zone);
    const qint64 today = days.dayOf(now);
    QSet<qint64> dictated;
    std::optional<qint64> latest; // neighbours are mostly of one day
    for (const Dictation &record : records) {
        if (const qint64 day = days.dayOf(record.date); day != latest) {
            dictated.insert(day);
            latest = day;
        }
    }
    const auto dayBefore = [&](qint64 day) {
        return dictated.contains(day - 1) ? day - 1 : days.dayBefore(day); // the former is far cheaper
    };
    int streak = 0;
    for (qint64 day = dictated.contains(today) ? today : dayBefore(today); dictated.contains(day);
         day = dayBefore(day))
        ++streak;
    return streak;
}
