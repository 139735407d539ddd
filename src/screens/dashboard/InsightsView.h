#pragma once

#include "base/Provider.h"
#include "history/FlowStats.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

class Clock;
class HistoryStore;
class Prefs;

/// How much was used and what it is estimated to cost, this month and in all.
struct UsageCard
{
    Q_GADGET
    Q_PROPERTY(QVariantList monthFigures READ monthFigures CONSTANT)
    Q_PROPERTY(QVariantList allTimeFigures READ allTimeFigures CONSTANT)
    /// What stands in the place of an estimate; empty where there is one.
    Q_PROPERTY(QString included READ included CONSTANT)
    Q_PROPERTY(QStringList footnotes READ footnotes CONSTANT)
public:
    UsageSummary month;
    UsageSummary allTime;
    Provider provider = Provider::sayvane;

    /// Such as "4.2 min", from ten minutes on "13 min".
    static QString minutes(const UsageSummary &summary);
    /// Such as "$0.01", and "under $0.01" for the least amounts.
    static QString costText(const UsageSummary &summary);

    QVariantList monthFigures() const { return figures(month); }
    QVariantList allTimeFigures() const { return figures(allTime); }
    QString included() const;
    QStringList footnotes() const;

private:
    QVariantList figures(const UsageSummary &summary) const;

    Q_DECLARE_TR_FUNCTIONS(UsageCard)
};

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

/// The history in figures. Everything is derived when it is read, so a closed window costs nothing.
class InsightsView final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariantList figures READ figures NOTIFY changed)
    Q_PROPERTY(WordsChart chart READ chart NOTIFY changed)
    Q_PROPERTY(UsageCard usage READ usage NOTIFY changed)
public:
    InsightsView(HistoryStore &store, const Prefs &prefs, Clock &clock);

    QVariantList figures() const;
    /// Such as "1.2 s"; "not yet" before the first timed dictation.
    QString timeToPaste() const;
    /// The words of the last 14 days.
    WordsChart chart() const;
    UsageCard usage() const;
    /// The first moment of this month in the user's calendar.
    QDateTime monthStart() const;

    /// Announces that another day has begun.
    void refresh() { Q_EMIT changed(); }

Q_SIGNALS:
    void changed();

private:
    HistoryStore &m_store;
    const Prefs &m_prefs;
    Clock &m_clock;
};
