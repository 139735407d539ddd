#include "screens/dashboard/StatsCard.h"

#include "history/FlowStats.h"

#include <QLocale>

#include <cmath>

using namespace Qt::StringLiterals;

QString StatsCard::wordsPerMinute(const FlowStats &stats)
{
    return QString::number(std::llround(stats.averageWordsPerMinute));
}

QList<Figure> StatsCard::figures(const FlowStats &stats)
{
    return {{QLocale().toString(stats.totalWords), tr("words dictated")},
            {wordsPerMinute(stats), tr("average wpm")},
            {QString::number(stats.dayStreak), tr("day streak")}};
}
