#include "screens/dashboard/StatsCard.h"

#include "history/FlowStats.h"

#include <QLocale>

#include <cmath>

QVariantList Figure::list(const QList<Figure> &figures)
{
    QVariantList list;
    for (const Figure &figure : figures)
        list.append(QVariant::fromValue(figure));
    return list;
}

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
