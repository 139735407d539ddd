#pragma once

#include "base/Clock.h"
#include "dictation/OverlayPanel.h"

#include <QColor>
#include <QList>
#include <QRectF>
#include <QSizeF>
#include <QString>

#include <optional>

class MessageText;
class OverlayModel;
class QFont;
class QPainter;
class QPointF;

/// An open circle that turns once in 0.85 seconds while something is under way.
struct Spinner
{
    double size = 15; ///< of the circle, whose line is 2 points wide
    bool spinning = false;

    /// Paints the circle as it stands that long after it began to spin.
    void paint(QPainter &painter, const QPointF &centre, Clock::Duration elapsed) const;
};

/// A single-coloured drawing of resources/icons, on a square grid.
struct Symbol
{
    QString name;

    /// Fills the square with the drawing.
    void paint(QPainter &painter, const QRectF &square, const QColor &colour) const;
};

/// How a tone looks.
struct ToneStyle
{
    QColor colour;
    QString icon; ///< the name of a symbol

    static ToneStyle of(OverlayTone tone);
};

/// The picture of the overlay: a dark capsule with a meter, a spinner, or a message with its icon.
class OverlayView
{
public:
    /// What moves, as it stands when painted.
    struct Motion
    {
        QList<double> levels; ///< in the place of the model's, while they are on their way
        bool spinning = false;
        Clock::Duration spun{};
    };

    explicit OverlayView(const OverlayModel &model, std::optional<double> messageWidth = std::nullopt);

    double barWidth = 3;
    double barSpacing = 3;
    double meterHeight = 20;

    /// The size that the present content needs.
    QSizeF fittingSize() const;
    void paint(QPainter &painter, const QSizeF &size, const Motion &motion) const;
    /// The part of the panel that moves while recording or processing.
    QRect movingPart() const;

private:
    void paintCapsule(QPainter &painter, const QSizeF &size) const;
    void paintMeter(QPainter &painter, const QList<double> &levels) const;
    void paintMessage(QPainter &painter, const QSizeF &size, const QString &message) const;
    MessageText textOf(const QString &message) const;

    const OverlayModel *m_model;
    std::optional<double> m_messageWidth;
};
