#pragma once

#include <QObject>
#include <QString>

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
};
