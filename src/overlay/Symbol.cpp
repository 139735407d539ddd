#include "overlay/Symbol.h"

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cmath>

using namespace Qt::StringLiterals;

void Symbol::paint(QPainter &painter, const QRectF &square, const QColor &colour) const
{
    // The drawing gives the coverage, the caller the colour.
    const double scale = painter.device()->devicePixelRatioF();
    const int pixels = static_cast<int>(std::ceil(square.width() * scale));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter inner(&image);
    QSvgRenderer(u":/icons/"_s + name + u".svg"_s).render(&inner);
    inner.setCompositionMode(QPainter::CompositionMode_SourceIn);
    inner.fillRect(image.rect(), colour);
    inner.end();
    painter.drawImage(square, image);
}
