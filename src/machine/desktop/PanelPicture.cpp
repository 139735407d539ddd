#include "machine/desktop/PanelPicture.h"

#include "base/FloatingPanel.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace {

constexpr double sinks = 5;      // points
constexpr double softness = 8.5; // standard deviation in points; beyond the reach nothing is left to see
constexpr double darkness = 0.38;

/// How far a point is from the edge of a rounded rectangle around 0, 0; negative within.
double distance(double x, double y, double halfWidth, double halfHeight, double radius)
{
    const double dx = std::abs(x) - (halfWidth - radius);
    const double dy = std::abs(y) - (halfHeight - radius);
    return std::hypot(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0) - radius;
}

} // namespace

void PanelShadow::paint(QPainter &painter, const QSize &panel, double cornerRadius)
{
    const double scale = painter.device()->devicePixelRatioF();
    if (m_panel != panel || m_image.devicePixelRatio() != scale)
        render(panel, cornerRadius, scale);
    painter.drawImage(QPointF(-reach, -reach), m_image);
}

void PanelShadow::render(const QSize &panel, double cornerRadius, double scale)
{
    m_panel = panel;
    m_image = QImage((panel.grownBy({reach, reach, reach, reach}).toSizeF() * scale).toSize(),
                     QImage::Format_ARGB32_Premultiplied);
    m_image.setDevicePixelRatio(scale);
    const double halfWidth = panel.width() / 2.0;
    const double halfHeight = panel.height() / 2.0;
    for (int row = 0; row < m_image.height(); ++row) {
        auto *line = reinterpret_cast<QRgb *>(m_image.scanLine(row));
        const double y = (row + 0.5) / scale - reach - halfHeight - sinks;
        for (int column = 0; column < m_image.width(); ++column) {
            const double x = (column + 0.5) / scale - reach - halfWidth;
            // A straight edge that is blurred falls off like this; the corners are close enough to it.
            const double off = distance(x, y, halfWidth, halfHeight, cornerRadius);
            const double shade = darkness * 0.5 * std::erfc(off / (softness * std::sqrt(2.0)));
            line[column] = qRgba(0, 0, 0, qRound(255 * shade));
        }
    }
    // The panel is translucent and stands on what is below it, not on its own shadow.
    QPainter painter(&m_image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.setBrush(Qt::black);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRectF(QPointF(reach, reach), panel.toSizeF()), cornerRadius, cornerRadius);
}

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
