#pragma once

#include "history/Dictation.h"

#include <QList>
#include <QTimeZone>

#include <optional>

/// The figures of all dictations together.
struct FlowStats
{
    qint64 totalWords = 0;
    double averageWordsPerMinute = 0; ///< over recordings with a positive duration
    int dayStreak = 0;                ///< consecutive days with a dictation, ending today or yesterday
    qint64 wordsToday = 0;
    int dictationsToday = 0;
    std::optional<qint64> averageTimeToPasteMs; ///< transcription plus cleanup

    bool operator==(const FlowStats &) const = default;

    /// What the records amount to at this moment; days are those of the time zone.
    static FlowStats compute(const QList<Dictation> &records, const QDateTime &now, const QTimeZone &zone);

    /// How many days in a row have a dictation, counted back from today, or from yesterday while today has
    /// none yet.
    static int dayStreakOf(const QList<Dictation> &records, const QDateTime &now, const QTimeZone &zone);
};
