#include "machine/x11/AccessiblePanel.h"

#include "machine/x11/PanelWindow.h"

#include <QGuiApplication>

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
