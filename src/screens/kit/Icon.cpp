#include "screens/kit/Icon.h"

#include "icons/IconImage.h"

#include <QQuickWindow>
#include <QSGImageNode>

#include <cmath>
#include <memory>

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
