#pragma once

#include <QDateTime>

/// How much was dictated on one day of the user's calendar.
struct DayWords
{
    QDateTime date; ///< the day's first moment, in the user's time zone
    qint64 words = 0;

    bool operator==(const DayWords &) const = default;
};
