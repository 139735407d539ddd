#include "machine/desktop/PanelPicture.h"

#include "base/FloatingPanel.h"

#include <QPainter>

#include <cmath>

void PanelPicture::resize(const QSize &panel, double cornerRadius)
{
    m_panel = panel;
    m_cornerRadius = cornerRadius;
}

QSize PanelPicture::size() const
{
    constexpr int reach = PanelShadow::reach;
    return m_panel.grownBy({reach, reach, reach, reach});
}

void PanelPicture::paint(PanelContent &content, const QRect &part)
{
    constexpr int reach = PanelShadow::reach;
    const QSize points = size();
    const QSize pixels(int(std::lround(points.width() * m_scale)),
                       int(std::lround(points.height() * m_scale)));
    QRect changed = part;
    if (m_image.size() != pixels || m_image.devicePixelRatio() != m_scale) {
        m_image = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        m_image.setDevicePixelRatio(m_scale);
        changed = QRect(QPoint(0, 0), m_panel);
    }
    if (changed.size() == m_panel)
        changed.adjust(-reach, -reach, reach, reach);
    QPainter painter(&m_image);
    painter.translate(reach, reach);
    painter.setClipRect(changed);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(changed, Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    m_shadow.paint(painter, m_panel, m_cornerRadius);
    content.paint(painter);
}
