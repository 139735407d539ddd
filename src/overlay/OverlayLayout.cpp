#include "overlay/OverlayLayout.h"

#include "dictation/OverlayPanel.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int screenMargins = 80;
constexpr int narrowestMaximum = 180;
constexpr int widestMaximum = 520;

QSize usable(const QSizeF &fitting)
{
    if (fitting.width() <= 1 || fitting.height() <= 1)
        return OverlayLayout::panelSize;
    return {static_cast<int>(std::ceil(fitting.width())), static_cast<int>(std::ceil(fitting.height()))};
}

} // namespace

double OverlayLayout::cornerRadius(const QSizeF &size)
{
    // The largest circle in the panel's corner that the corner of the padded content still touches:
    // (r - left)² + (r - top)² = r².
    const double left = messagePadding.left();
    const double top = messagePadding.top();
    return std::min(std::min(size.width(), size.height()) / 2, left + top + std::sqrt(2 * left * top));
}

int OverlayLayout::maximumMessageWidth(const std::optional<QRect> &visibleFrame)
{
    if (!visibleFrame)
        return widestMaximum;
    return std::clamp(visibleFrame->width() - screenMargins, narrowestMaximum, widestMaximum);
}

OverlayLayout::Fit OverlayLayout::resize(FlowState state, bool hasMessage, int maximumWidth,
                                         const FittingSize &fittingSize)
{
    if (state != FlowState::idle || !hasMessage)
        return {};
    Fit fit;
    fit.size = usable(fittingSize(std::nullopt));
    if (fit.size.width() > maximumWidth) {
        fit.messageWidth = maximumWidth;
        fit.size = usable(fittingSize(fit.messageWidth));
    }
    fit.size = fit.size.expandedTo(panelSize);
    return fit;
}

QRect OverlayLayout::place(const QSize &size, const QRect &visibleFrame)
{
    return {QPoint(visibleFrame.x() + (visibleFrame.width() - size.width()) / 2,
                   visibleFrame.y() + visibleFrame.height() - bottomDistance - size.height()),
            size};
}

OverlayLayout::Bar OverlayLayout::bar(qsizetype index, double level, double barWidth, double barSpacing,
                                      double meterHeight)
{
    const double count = OverlayModel::levelCount;
    const double row = count * barWidth + (count - 1) * barSpacing;
    const double x = (panelSize.width() - row) / 2 + static_cast<double>(index) * (barWidth + barSpacing);
    const double loudness = level > 0 ? std::min(level, 1.0) : 0.0; // NaN is silence too
    const double height = barWidth + (meterHeight - barWidth) * loudness;
    return {QRectF(x, (panelSize.height() - height) / 2, barWidth, height), 0.55 + 0.45 * loudness};
}
