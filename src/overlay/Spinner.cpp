#include "overlay/Spinner.h"

#include <QPainter>

using namespace std::chrono_literals;

namespace {

constexpr Clock::Duration turn = 850ms;
constexpr double length = 0.72; // of the whole circle
constexpr int wholeCircle = 360 * 16;

} // namespace

void Spinner::paint(QPainter &painter, const QPointF &centre, Clock::Duration elapsed) const
{
    const double turned =
        spinning ? static_cast<double>((elapsed % turn).count()) / static_cast<double>(turn.count()) : 0.0;
    const QRectF circle(centre.x() - size / 2, centre.y() - size / 2, size, size);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor::fromRgbF(1, 1, 1, 0.9F), 2, Qt::SolidLine, Qt::RoundCap));
    // Angles are counted against the clock; the circle starts at three o'clock and turns with it.
    painter.drawArc(circle, static_cast<int>(-turned * wholeCircle), static_cast<int>(-length * wholeCircle));
}
