#pragma once

#include "base/FlowState.h"

#include <QMarginsF>
#include <QRect>
#include <QSize>

#include <functional>
#include <optional>

/// The overlay's measures, in points, and the rules between them.
namespace OverlayLayout {

inline constexpr QSize panelSize{180, 36};
/// Between the panel and the lower end of the visible frame.
inline constexpr int bottomDistance = 36;
inline constexpr QMarginsF messagePadding{16, 9, 16, 9};
inline constexpr double iconSpacing = 8;

/// Half a line, unless the round ends would then cut into the corners of a message of many lines.
double cornerRadius(const QSizeF &size);

/// The widest a message may make the panel.
int maximumMessageWidth(const std::optional<QRect> &visibleFrame);

/// How large the panel is, and the width its message is wrapped to; none when it sets its own.
struct Fit
{
    QSize size = panelSize;
    std::optional<double> messageWidth;

    bool operator==(const Fit &) const = default;
};

/// Lays the view out at a width, or as wide as it likes, and tells the size it then needs.
using FittingSize = std::function<QSizeF(std::optional<double> messageWidth)>;

Fit resize(FlowState state, bool hasMessage, int maximumWidth, const FittingSize &fittingSize);

/// Where a panel of that size stands in the visible frame.
QRect place(const QSize &size, const QRect &visibleFrame);

/// A bar of the meter.
struct Bar
{
    QRectF frame;
    double opacity;
};

/// The bar at an index of the row that is centred in the panel.
Bar bar(qsizetype index, double level, double barWidth, double barSpacing, double meterHeight);

} // namespace OverlayLayout
