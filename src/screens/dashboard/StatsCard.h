#pragma once

#include "screens/dashboard/Figure.h"

#include <QCoreApplication>
#include <QList>

struct FlowStats;

/// The three figures above the list of dictations, in the user's number format.
struct StatsCard
{
    static QList<Figure> figures(const FlowStats &stats);

    /// Rounded to the nearest whole number, halves away from zero.
    static QString wordsPerMinute(const FlowStats &stats);

    Q_DECLARE_TR_FUNCTIONS(StatsCard)
};
