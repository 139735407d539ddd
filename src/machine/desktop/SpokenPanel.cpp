#include "machine/desktop/SpokenPanel.h"

#include <QAccessibleObject>
#include <QGuiApplication>

namespace {

class AccessiblePart final : public QAccessibleObject
{
public:
    explicit AccessiblePart(SpokenPanel &panel) : QAccessibleObject(&panel), m_panel(panel) {}

    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(qApp); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? m_panel.text() : QString();
    }
    QAccessible::Role role() const override { return QAccessible::Notification; }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invisible = !m_panel.isShown();
        return state;
    }
    QRect rect() const override { return {}; }

private:
    SpokenPanel &m_panel;
};

} // namespace

SpokenPanel::SpokenPanel()
{
    QAccessible::installFactory([](const QString &, QObject *object) -> QAccessibleInterface * {
        auto *panel = dynamic_cast<SpokenPanel *>(object);
        return panel ? new AccessiblePart(*panel) : nullptr; // owned by Qt
    });
    // The question alone makes Qt look for screen readers; they would miss what is said before.
    QAccessible::isActive();
}

void SpokenPanel::announce(const QString &text)
{
    m_text = text;
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent renamed(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&renamed);
    // Screen readers speak a notification when it appears.
    QAccessibleEvent shown(this, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&shown);
}
