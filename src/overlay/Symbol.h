#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

/// A single-coloured drawing of resources/icons, on a square grid.
struct Symbol
{
    QString name;

    /// Fills the square with the drawing.
    void paint(QPainter &painter, const QRectF &square, const QColor &colour) const;
};
