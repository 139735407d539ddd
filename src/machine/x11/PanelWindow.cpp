#include "machine/x11/PanelWindow.h"

#include "base/FloatingPanel.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QList>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

#include <xcb/shape.h>

using namespace Qt::StringLiterals;

namespace {

/// How many pixels a row of the corner is set back: those whose centre is outside of the circle.
int setBack(int row, double radius)
{
    const double above = radius - (row + 0.5);
    if (above <= 0)
        return 0;
    return static_cast<int>(std::ceil(radius - std::sqrt(radius * radius - above * above) - 0.5));
}

constexpr QMargins shadowMargins(PanelShadow::reach, PanelShadow::reach, PanelShadow::reach,
                                 PanelShadow::reach);

} // namespace

PanelOutline::PanelOutline(xcb_connection_t *connection, xcb_window_t window)
    : m_connection(connection),
      m_window(window)
{
}

void PanelOutline::cut(const QSize &pixels, double cornerRadius) const
{
    QList<xcb_rectangle_t> rows;
    for (int row = 0; row < pixels.height(); ++row) {
        const int left = std::max(0, setBack(std::min(row, pixels.height() - 1 - row), cornerRadius));
        rows.append({static_cast<int16_t>(left), static_cast<int16_t>(row),
                     static_cast<uint16_t>(pixels.width() - 2 * left), 1});
    }
    xcb_shape_rectangles(m_connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_YX_BANDED,
                         m_window, 0, 0, static_cast<uint32_t>(rows.size()), rows.constData());
}

void PanelOutline::clear() const
{
    xcb_shape_mask(m_connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, m_window, 0, 0, XCB_PIXMAP_NONE);
}

PanelWindow::PanelWindow(PanelContent &content) : m_content(content)
{
    setTitle(u"Sayvane overlay"_s);
    // A window that the window manager leaves alone: it gets no focus, is on no list of windows, and is on
    // every desktop.
    setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint |
             Qt::WindowDoesNotAcceptFocus | Qt::WindowTransparentForInput);
    QSurfaceFormat translucent = format();
    translucent.setAlphaBufferSize(8);
    setFormat(translucent);
}

void PanelWindow::place(const QRect &panel, double cornerRadius, bool isComposited)
{
    m_panelSize = panel.size();
    m_cornerRadius = cornerRadius;
    m_isComposited = isComposited;
    setGeometry(isComposited ? panel.marginsAdded(shadowMargins) : panel);
    update();
}

void PanelWindow::updatePanel(const QRect &part)
{
    update(m_isComposited ? part.translated(shadowMargins.left(), shadowMargins.top()) : part);
}

void PanelWindow::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setClipRegion(event->region());
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(event->region().boundingRect(), m_isComposited ? Qt::transparent : Qt::black);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (m_isComposited) {
        painter.translate(shadowMargins.left(), shadowMargins.top());
        m_shadow.paint(painter, m_panelSize, m_cornerRadius);
    }
    m_content.paint(painter);
}

QAccessibleInterface *PanelWindow::accessibleRoot() const
{
    return QAccessible::queryAccessibleInterface(const_cast<PanelWindow *>(this));
}

AccessiblePanel::AccessiblePanel(PanelWindow &window) : QAccessibleObject(&window), m_window(window)
{
}

void AccessiblePanel::install()
{
    QAccessible::installFactory([](const QString &, QObject *object) -> QAccessibleInterface * {
        auto *window = dynamic_cast<PanelWindow *>(object);
        return window ? new AccessiblePanel(*window) : nullptr; // owned by Qt
    });
    // The question alone makes Qt look for screen readers; they would miss what is said before.
    QAccessible::isActive();
}

void AccessiblePanel::announce(PanelWindow &window)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent renamed(&window, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&renamed);
    // Screen readers speak a notification when it appears.
    QAccessibleEvent shown(&window, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&shown);
}

QAccessibleInterface *AccessiblePanel::parent() const
{
    return QAccessible::queryAccessibleInterface(qApp);
}

QString AccessiblePanel::text(QAccessible::Text kind) const
{
    return kind == QAccessible::Name ? m_window.announcement() : QString();
}

QAccessible::State AccessiblePanel::state() const
{
    QAccessible::State state;
    state.invisible = !m_window.isVisible();
    return state;
}

QRect AccessiblePanel::rect() const
{
    return m_window.geometry();
}
