#pragma once

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

    /// With exactly so many decimals and a point, rounded as C's printf does.
    static QString decimal(double number, int decimals);

    /// The figures as QML takes a list.
    static QVariantList list(const QList<Figure> &figures);
};
