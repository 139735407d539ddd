#include "screens/kit/Icon.h"

#include "icons/IconImage.h"

#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>

#include <cmath>
#include <memory>

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

Icon::Icon(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    setImplicitSize(m_size, m_size);
}

void Icon::setSymbol(const QString &symbol)
{
    if (m_symbol == symbol)
        return;
    m_symbol = symbol;
    redraw();
}

void Icon::setColor(const QColor &color)
{
    if (m_color == color)
        return;
    m_color = color;
    redraw();
}

void Icon::setSize(int size)
{
    if (m_size == size)
        return;
    m_size = size;
    setImplicitSize(size, size);
    redraw();
}

void Icon::redraw()
{
    m_stale = true;
    update();
    Q_EMIT changed();
}

void Icon::itemChange(ItemChange change, const ItemChangeData &value)
{
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) {
        m_stale = true;
        update();
    }
    QQuickItem::itemChange(change, value);
}

QSGNode *Icon::updatePaintNode(QSGNode *old, UpdatePaintNodeData *)
{
    auto *node = static_cast<QSGImageNode *>(old);
    if (!node || m_stale) {
        const int pixels = static_cast<int>(std::lround(m_size * window()->effectiveDevicePixelRatio()));
        const QImage image = IconImage::render(m_symbol, pixels, m_color);
        if (image.isNull()) {
            delete node;
            return nullptr;
        }
        if (!node) {
            node = window()->createImageNode();
            node->setOwnsTexture(true);
        }
        node->setTexture(window()->createTextureFromImage(image));
        m_stale = false;
    }
    node->setRect(0, 0, m_size, m_size);
    return node;
}
