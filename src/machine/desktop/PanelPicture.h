#pragma once

#include <QImage>
#include <QRect>
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

class PanelContent;

/// What a floating panel looks like with the shadow around it, kept in memory for a surface that is no window
/// of Qt's. Premultiplied, 32 bits a pixel.
class PanelPicture
{
public:
    /// The panel's size in points, without the shadow.
    void resize(const QSize &panel, double cornerRadius);
    /// How many pixels a point has.
    void setScale(double scale) { m_scale = scale; }

    /// Paints the part of the panel anew, given in points; a part as large as the panel includes the shadow.
    void paint(PanelContent &content, const QRect &part);

    const QSize &panel() const { return m_panel; }
    /// The size in points, the shadow included.
    QSize size() const;
    double scale() const { return m_scale; }
    const QImage &image() const { return m_image; }

private:
    QSize m_panel;
    double m_cornerRadius = 0;
    double m_scale = 1;
    QImage m_image;
    PanelShadow m_shadow;
};
