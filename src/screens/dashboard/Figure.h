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

    /// The figures as QML takes a list.
    static QVariantList list(const QList<Figure> &figures);
};
