#pragma once

class QPainter;

/// What a floating panel shows.
class PanelContent
{
public:
    virtual ~PanelContent() = default;

    /// Paints the panel in points, its top left corner being 0, 0; nothing is below. The painter is clipped
    /// to what has to be painted.
    virtual void paint(QPainter &painter) = 0;
    /// Screens came, went or changed while the panel is shown: its place may be another.
    virtual void screensChanged() = 0;
};
