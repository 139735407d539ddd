#pragma once

#include <QRect>
#include <QString>

#include <optional>

/// A picture without a frame that floats above every window, on every desktop. It never takes the keyboard
/// and the mouse reaches what is below it. Lengths are points, of which a screen may have less than pixels.
class FloatingPanel
{
public:
    virtual ~FloatingPanel() = default;

    /// What panels and docks leave free of the main screen, the one that the user works on; none without a
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
