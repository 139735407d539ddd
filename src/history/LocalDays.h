#pragma once

#include <QDateTime>
#include <QList>
#include <QTimeZone>

/// Tells on which day of a time zone's calendar a moment falls, fast for many moments.
///
/// The zone is asked once for every stretch between two changes of its clocks; within one a day is plain
/// arithmetic. Days are counted as QDate does (Julian day numbers).
class LocalDays
{
public:
    /// An invalid zone counts as UTC.
    explicit LocalDays(const QTimeZone &zone) : m_zone(zone.isValid() ? zone : QTimeZone::utc()) {}

    qint64 dayOf(const QDateTime &moment);

    /// The first moment of the day, in the zone. Invalid for a day that the zone never had, as where clocks
    /// were moved across the date line.
    QDateTime startOf(qint64 day) const { return QDate::fromJulianDay(day).startOfDay(m_zone); }

    /// The day that came before this one in the zone: clocks moved across the date line leave one out.
    qint64 dayBefore(qint64 day) const { return startOf(day - 1).isValid() ? day - 1 : day - 2; }

private:
    /// From one change of the clocks to the next, in milliseconds since 1970.
    struct Stretch
    {
        qint64 begins;
        qint64 ends;
        qint64 offset; // of local time from UTC
    };
    const Stretch &stretchOf(qint64 moment);

    QTimeZone m_zone;
    QList<Stretch> m_stretches; // those asked for so far
    qsizetype m_latest = 0;     // moments in a row are mostly of one stretch
};
