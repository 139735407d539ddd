#pragma once

#include <QCoreApplication>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariantList>

/// A number in words, and what it counts.
struct Figure
{
    Q_GADGET
    Q_PROPERTY(QString value MEMBER value CONSTANT)
    Q_PROPERTY(QString label MEMBER label CONSTANT)
public:
    QString value;
    QString label;

    bool operator==(const Figure &) const = default;

    /// The figures as QML takes a list.
    static QVariantList list(const QList<Figure> &figures);
};

struct FlowStats;

/// The three figures above the list of dictations, in the user's number format.
struct StatsCard
{
    static QList<Figure> figures(const FlowStats &stats);

    /// Rounded to the nearest whole number, halves away from zero.
    static QString wordsPerMinute(const FlowStats &stats);

    Q_DECLARE_TR_FUNCTIONS(StatsCard)
};
