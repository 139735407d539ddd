#pragma once

#include "base/Clock.h"

class QPainter;
class QPointF;

/// An open circle that turns once in 0.85 seconds while something is under way.
struct Spinner
{
    double size = 15; ///< of the circle, whose line is 2 points wide
    bool spinning = false;

    /// Paints the circle as it stands that long after it began to spin.
    void paint(QPainter &painter, const QPointF &centre, Clock::Duration elapsed) const;
};
