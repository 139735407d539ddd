#pragma once

#include <private/qaccessiblequickitem_p.h>

/// A part of a window for screen readers, with what Qt Quick leaves out: that it is disabled, whether it is
/// open or closed (its property `expanded`), the name of a field of dots, and that a button can be pressed.
class AccessibleItem final : public QAccessibleQuickItem
{
public:
    explicit AccessibleItem(QQuickItem &item);

    /// Makes the windows' parts known to screen readers this way; once is enough.
    static void install();

    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    QString text(QAccessible::Text kind) const override;
    QStringList actionNames() const override;
    void doAction(const QString &name) override;
};
