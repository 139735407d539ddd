#include "icons/IconImage.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

using namespace Qt::StringLiterals;

QImage IconImage::render(const QString &symbol, int pixels, const QColor &color)
{
    const QString path = u":/icons/"_s + symbol + u".svg"_s;
    if (symbol.isEmpty() || pixels <= 0 || !QFile::exists(path))
        return {};
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        QSvgRenderer(path).render(&painter, QRectF(0, 0, pixels, pixels));
    }
    // What is black counts, what is white does not: colours are premultiplied, so green tells how much
    // of the covered part is white.
    for (int y = 0; y < pixels; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < pixels; ++x)
            line[x] = qRgba(0, 0, 0, qAlpha(line[x]) - qGreen(line[x]));
    }
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}
