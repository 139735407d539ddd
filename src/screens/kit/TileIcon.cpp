#include "screens/kit/TileIcon.h"

#include "icons/IconImage.h"

#include <QPainter>

#include <cmath>

TileIcon::TileIcon(QQuickItem *parent) : QQuickPaintedItem(parent)
{
    setImplicitSize(m_size, m_size);
    setAntialiasing(true);
    connect(this, &TileIcon::changed, this, [this] { update(); });
}

void TileIcon::setSize(int size)
{
    if (m_size == size)
        return;
    m_size = size;
    setImplicitSize(size, size);
    Q_EMIT changed();
}

void TileIcon::paint(QPainter *painter)
{
    const double size = m_size;
    QLinearGradient gradient(0, 0, size, size);
    const qsizetype last = m_colours.size() - 1;
    for (qsizetype i = 0; i <= last; ++i)
        gradient.setColorAt(last == 0 ? 0 : static_cast<double>(i) / static_cast<double>(last),
                            QColor(m_colours[i]));
    painter->setPen(Qt::NoPen);
    painter->setBrush(gradient);
    painter->drawRoundedRect(QRectF(0, 0, size, size), size * 0.25, size * 0.25);

    // A letter set at half the tile's side reaches a little beyond it with its stroke; so does a symbol.
    const double side = size * 0.58;
    const double scale = painter->device()->devicePixelRatio() * painter->transform().m11();
    const int pixels = static_cast<int>(std::lround(side * scale));
    const double place = (size - pixels / scale) / 2;
    painter->drawImage(QRectF(place, place, pixels / scale, pixels / scale),
                       IconImage::render(m_symbol, pixels, Qt::white));
}
