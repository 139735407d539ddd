#pragma once

#include <QAccessibleObject>

class PanelWindow;

/// The floating panel for screen readers: one notification, whose parts (a meter, a spinner, an icon) say
/// nothing of their own.
class AccessiblePanel final : public QAccessibleObject
{
public:
    explicit AccessiblePanel(PanelWindow &window);

    /// Makes the panels of this program known; once is enough.
    static void install();
    /// Tells listening screen readers that the panel says something new.
    static void announce(PanelWindow &window);

    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override;
    QAccessible::Role role() const override { return QAccessible::Notification; }
    QAccessible::State state() const override;
    QRect rect() const override;

private:
    PanelWindow &m_window;
};
