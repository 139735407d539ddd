#pragma once

#include "overlay/Spinner.h"

#include <QList>
#include <QSizeF>

#include <optional>

class MessageText;
class OverlayModel;
class QFont;
class QPainter;

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
