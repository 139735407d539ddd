#include "overlay/OverlayView.h"

#include "dictation/OverlayPanel.h"
#include "overlay/MessageText.h"
#include "overlay/OverlayLayout.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>

#include <cmath>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr Clock::Duration turn = 850ms;
constexpr double length = 0.72; // of the whole circle
constexpr int wholeCircle = 360 * 16;

constexpr double messageIconSize = 17; // its drawing is as high as the capitals of the text beside it
constexpr double doneIconSize = 19;

// No desktop blurs what is below a window, so that the material has to cover more to be as calm: text on it
// keeps a contrast above 7 to 1 over white.
const QColor material(44, 44, 46, 189);

QColor white(double opacity)
{
    return QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity));
}

QFont messageFont()
{
    QFont font = QGuiApplication::font();
    font.setPixelSize(13);
    font.setWeight(QFont::Medium);
    return font;
}

} // namespace

void Spinner::paint(QPainter &painter, const QPointF &centre, Clock::Duration elapsed) const
{
    const double turned =
        spinning ? static_cast<double>((elapsed % turn).count()) / static_cast<double>(turn.count()) : 0.0;
    const QRectF circle(centre.x() - size / 2, centre.y() - size / 2, size, size);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor::fromRgbF(1, 1, 1, 0.9F), 2, Qt::SolidLine, Qt::RoundCap));
    // Angles are counted against the clock; the circle starts at three o'clock and turns with it.
    painter.drawArc(circle, static_cast<int>(-turned * wholeCircle), static_cast<int>(-length * wholeCircle));
}

void Symbol::paint(QPainter &painter, const QRectF &square, const QColor &colour) const
{
    // The drawing gives the coverage, the caller the colour.
    const double scale = painter.device()->devicePixelRatioF();
    const int pixels = static_cast<int>(std::ceil(square.width() * scale));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter inner(&image);
    QSvgRenderer(u":/icons/"_s + name + u".svg"_s).render(&inner);
    inner.setCompositionMode(QPainter::CompositionMode_SourceIn);
    inner.fillRect(image.rect(), colour);
    inner.end();
    painter.drawImage(square, image);
}

ToneStyle ToneStyle::of(OverlayTone tone)
{
    switch (tone) {
    case OverlayTone::warning:
        return {QColor(245, 185, 66), u"exclamationmark.triangle.fill"_s};
    case OverlayTone::failure:
        return {QColor(227, 137, 154), u"exclamationmark.circle.fill"_s};
    case OverlayTone::success:
        break;
    }
    return {QColor(255, 255, 255), u"checkmark"_s};
}

OverlayView::OverlayView(const OverlayModel &model, std::optional<double> messageWidth)
    : m_model(&model),
      m_messageWidth(messageWidth)
{
}

MessageText OverlayView::textOf(const QString &message) const
{
    const QMarginsF &padding = OverlayLayout::messagePadding;
    const double around = padding.left() + messageIconSize + OverlayLayout::iconSpacing + padding.right();
    return {message, messageFont(), m_messageWidth ? std::optional(*m_messageWidth - around) : std::nullopt};
}

QSizeF OverlayView::fittingSize() const
{
    if (m_model->state() != FlowState::idle || !m_model->message())
        return OverlayLayout::panelSize;
    const QMarginsF &padding = OverlayLayout::messagePadding;
    const QSizeF text = textOf(*m_model->message()).size();
    const double row = messageIconSize + OverlayLayout::iconSpacing + text.width();
    const QSizeF size(m_messageWidth.value_or(padding.left() + row + padding.right()),
                      padding.top() + std::max(messageIconSize, text.height()) + padding.bottom());
    return size.expandedTo(OverlayLayout::panelSize);
}

void OverlayView::paint(QPainter &painter, const QSizeF &size, const Motion &motion) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    paintCapsule(painter, size);
    const QPointF centre(size.width() / 2, size.height() / 2);
    if (m_model->state() == FlowState::recording)
        paintMeter(painter, motion.levels);
    else if (m_model->state() == FlowState::processing)
        Spinner{.size = 15, .spinning = motion.spinning}.paint(painter, centre, motion.spun);
    else if (m_model->message())
        paintMessage(painter, size, *m_model->message());
    else
        Symbol{u"checkmark"_s}.paint(
            painter,
            {centre.x() - doneIconSize / 2, centre.y() - doneIconSize / 2, doneIconSize, doneIconSize},
            white(1));
}

QRect OverlayView::movingPart() const
{
    const QRect panel(QPoint(0, 0), OverlayLayout::panelSize);
    if (m_model->state() == FlowState::processing)
        return QRect(0, 0, 20, 20).translated(panel.center() - QPoint(9, 9));
    const auto bar = [&](qsizetype index) {
        return OverlayLayout::bar(index, 1, barWidth, barSpacing, meterHeight).frame;
    };
    return bar(0).united(bar(OverlayModel::levelCount - 1)).toAlignedRect();
}

void OverlayView::paintCapsule(QPainter &painter, const QSizeF &size) const
{
    const double radius = OverlayLayout::cornerRadius(size);
    QPainterPath capsule;
    capsule.addRoundedRect(QRectF(QPointF(0, 0), size), radius, radius);
    painter.fillPath(capsule, material);
    painter.fillPath(capsule, QColor::fromRgbF(0, 0, 0, 0.45F));
    QPainterPath outline;
    outline.addRoundedRect(QRectF(QPointF(0.5, 0.5), size - QSizeF(1, 1)), radius - 0.5, radius - 0.5);
    painter.strokePath(outline, QPen(white(0.14), 1));
}

void OverlayView::paintMeter(QPainter &painter, const QList<double> &levels) const
{
    painter.setPen(Qt::NoPen);
    for (qsizetype i = 0; i < levels.size(); ++i) {
        const OverlayLayout::Bar bar = OverlayLayout::bar(i, levels[i], barWidth, barSpacing, meterHeight);
        painter.setBrush(white(bar.opacity));
        painter.drawRoundedRect(bar.frame, barWidth / 2, barWidth / 2);
    }
}

void OverlayView::paintMessage(QPainter &painter, const QSizeF &size, const QString &message) const
{
    const QMarginsF &padding = OverlayLayout::messagePadding;
    const MessageText text = textOf(message);
    const double row = messageIconSize + OverlayLayout::iconSpacing + text.size().width();
    const double left = m_messageWidth ? padding.left() : (size.width() - row) / 2;
    const double height = std::max(messageIconSize, text.size().height());
    const double top = std::max(padding.top(), (size.height() - height) / 2);
    const ToneStyle style = ToneStyle::of(m_model->tone());
    // The icon stands beside the first line, whose letters are centred in it.
    const double iconTop = top + std::max(0.0, (text.lineHeight() - messageIconSize) / 2);
    const double textTop = top + std::max(0.0, (messageIconSize - text.lineHeight()) / 2);
    Symbol{style.icon}.paint(painter, {left, iconTop, messageIconSize, messageIconSize}, style.colour);
    text.paint(painter, {left + messageIconSize + OverlayLayout::iconSpacing, textTop}, white(0.92));
}
