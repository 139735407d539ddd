#pragma once

#include <QRect>
#include <QString>

#include <memory>
#include <optional>

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

/// A picture without a frame that floats above every window, on every desktop. It never takes the keyboard
/// and the mouse reaches what is below it. Lengths are points, of which a screen may have less than pixels.
class FloatingPanel
{
public:
    virtual ~FloatingPanel() = default;

    /// What docks leave free of the main screen, the one that the user works on; none without a
    /// screen.
    virtual std::optional<QRect> visibleFrame() const = 0;
    /// Whether the user asked the desktop for less motion.
    virtual bool reducesMotion() const = 0;

    /// Shows the panel at this place, in front of everything. What it shows is cut to rounded corners.
    virtual void show(const QRect &frame, double cornerRadius) = 0;
    virtual void hide() = 0;
    /// Has a part of the content painted again, given in points of the panel.
    virtual void update(const QRect &part) = 0;
    /// Tells people who do not see the panel.
    virtual void announce(const QString &text) = 0;
};

/// Where floating panels come from.
class FloatingPanels
{
public:
    virtual ~FloatingPanels() = default;

    /// A panel that is not shown yet; the content outlives it. Null where the desktop lets no window float
    /// without taking the keyboard.
    virtual std::unique_ptr<FloatingPanel> create(PanelContent &content) = 0;
};
