#pragma once

#include <QImage>
#include <QSize>

class QPainter;
class QRegion;

/// The soft shadow around a rounded panel, below it by a little. Kept as a picture, since it is dear to make
/// and changes with the panel's size only.
class PanelShadow
{
public:
    /// How far the shadow reaches beyond the panel on every side, in points.
    static constexpr int reach = 24;

    /// Paints the shadow of a panel whose top left corner is at 0, 0, and nothing where the panel is.
    void paint(QPainter &painter, const QSize &panel, double cornerRadius);

private:
    void render(const QSize &panel, double cornerRadius, double scale);

    QImage m_image;
    QSize m_panel;
};
