#include "machine/x11/PanelWindow.h"

#include "base/PanelContent.h"

#include <QAccessible>
#include <QPaintEvent>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

constexpr QMargins shadowMargins(PanelShadow::reach, PanelShadow::reach, PanelShadow::reach,
                                 PanelShadow::reach);

} // namespace

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
