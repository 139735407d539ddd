#include "dashboard/StatsCard.h"

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
    return {{QLocale().toString(stats.totalWords), u"words dictated"_s},
            {wordsPerMinute(stats), u"average wpm"_s},
            {QString::number(stats.dayStreak), u"day streak"_s}};
}
