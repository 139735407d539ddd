#pragma once

#include "history/Dictation.h"

#include <QDateTime>
#include <QList>
#include <QTimeZone>

#include <optional>

/// How much was dictated on one day of the user's calendar.
struct DayWords
{
    QDateTime date; ///< the day's first moment, in the user's time zone
    qint64 words = 0;

    bool operator==(const DayWords &) const = default;
};

/// What a number of dictations amount to.
struct UsageSummary
{
    int dictations = 0;
    double seconds = 0; ///< of recorded audio
    double costUSD = 0; ///< estimated, for those made with a key of the user's own

    bool operator==(const UsageSummary &) const = default;
};

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
