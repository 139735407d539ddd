#pragma once

#include "dashboard/Figure.h"

#include <QList>

struct FlowStats;

/// The three figures above the list of dictations, in the user's number format.
namespace StatsCard {

QList<Figure> figures(const FlowStats &stats);

/// Rounded to the nearest whole number, halves away from zero.
QString wordsPerMinute(const FlowStats &stats);

} // namespace StatsCard
