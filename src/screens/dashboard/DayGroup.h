#pragma once

#include "history/Dictation.h"

#include <QCoreApplication>
#include <QDate>
#include <QList>
#include <QString>
#include <QTimeZone>

/// The dictations of one day, in the order of the list they come from.
struct DayGroup
{
    QDate id;
    QString title; ///< "Today", "Yesterday", or such as "Sunday 1 March 2026"
    QList<Dictation> items;

    /// Groups in the order in which their days are first met; days are those of the time zone.
    static QList<DayGroup> groupsOf(const QList<Dictation> &records, const QDateTime &now,
                                    const QTimeZone &zone);

    /// Such as "9:05 am", whatever the user's locale.
    static QString timeText(const QDateTime &date, const QTimeZone &zone);

    Q_DECLARE_TR_FUNCTIONS(DayGroup)
};
