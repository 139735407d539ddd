#pragma once

#include "history/DayWords.h"

#include <QCoreApplication>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariantList>

/// One day of the chart.
struct ChartBar
{
    Q_GADGET
    Q_PROPERTY(QString label MEMBER label CONSTANT)
    Q_PROPERTY(QString description MEMBER description CONSTANT)
    Q_PROPERTY(double height MEMBER height CONSTANT)
    Q_PROPERTY(bool marked MEMBER marked CONSTANT)
public:
    QString label;       ///< such as "14 Mar"
    QString description; ///< such as "14 Mar: 1,250 words"
    double height = 0;   ///< the share of the chart's height, 0 to 1
    bool marked = false; ///< whether the axis names the day

    bool operator==(const ChartBar &) const = default;
};

/// A mark of the chart's axis of words.
struct ChartMark
{
    Q_GADGET
    Q_PROPERTY(QString label MEMBER label CONSTANT)
    Q_PROPERTY(double height MEMBER height CONSTANT)
public:
    QString label;
    double height = 0; ///< the share of the chart's height, 0 to 1

    bool operator==(const ChartMark &) const = default;
};

/// The words of some days as bars, over an axis that ends on a round number.
struct WordsChart
{
    Q_GADGET
    Q_PROPERTY(QVariantList bars READ barList CONSTANT)
    Q_PROPERTY(QVariantList marks READ markList CONSTANT)
    Q_PROPERTY(QString summary MEMBER summary CONSTANT)
public:
    QList<ChartBar> bars;
    QList<ChartMark> marks;
    QString summary; ///< the chart in one sentence

    static WordsChart of(const QList<DayWords> &days);

private:
    QVariantList barList() const;
    QVariantList markList() const;

    Q_DECLARE_TR_FUNCTIONS(WordsChart)
};
