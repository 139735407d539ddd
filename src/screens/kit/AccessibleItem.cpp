#include "screens/kit/AccessibleItem.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLibraryInfo>
#include <QPointer>
#include <QQuickItem>
#include <QVersionNumber>
#include <private/qquickaccessibleattached_p.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

void announceEnabled(QQuickItem *item)
{
    QAccessible::State changed;
    changed.disabled = true;
    QAccessibleStateChangeEvent event(item, changed);
    QAccessible::updateAccessibility(&event);
}

bool isButton(const QQuickItem &item)
{
    return item.inherits("QQuickAbstractButton");
}

/// Buttons have no operation for it.
void pressSpace(QPointer<QQuickItem> button)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, Qt::Key_Space, Qt::NoModifier, u" "_s);
        if (button)
            QCoreApplication::sendEvent(button, &event);
    }
}

QAccessibleInterface *interfaceFor(const QString &className, QObject *object)
{
    if (className != "QQuickItem"_L1)
        return nullptr;
    auto *quickItem = static_cast<QQuickItem *>(object);
    auto item = std::make_unique<AccessibleItem>(*quickItem);
    if (!item->isAccessible())
        return nullptr;
    QObject::connect(quickItem, &QQuickItem::enabledChanged, quickItem,
                     [quickItem] { announceEnabled(quickItem); });
    return item.release(); // owned by Qt
}

} // namespace

AccessibleItem::AccessibleItem(QQuickItem &item) : QAccessibleQuickItem(&item)
{
}

void AccessibleItem::install()
{
    // The class behind it is private to Qt Quick, and keeps its shape within a minor version only.
    if (QLibraryInfo::version().minorVersion() == QT_VERSION_MINOR)
        QAccessible::installFactory(&interfaceFor);
}

QAccessible::Role AccessibleItem::role() const
{
    const auto *told = qobject_cast<QQuickAccessibleAttached *>(
        qmlAttachedPropertiesObject<QQuickAccessibleAttached>(object(), false));
    return told && told->role() != QAccessible::NoRole ? told->role() : QAccessibleQuickItem::role();
}

QAccessible::State AccessibleItem::state() const
{
    QAccessible::State state = QAccessibleQuickItem::state();
    state.disabled = !item()->isEnabled();
    // A label is no stop of the keyboard.
    if (state.disabled || (role() == QAccessible::StaticText && !item()->activeFocusOnTab()))
        state.focusable = false;
    if (const QVariant expanded = item()->property("expanded"); expanded.isValid()) {
        state.expandable = true;
        state.expanded = expanded.toBool();
        state.collapsed = !state.expanded;
    }
    return state;
}

QString AccessibleItem::text(QAccessible::Text kind) const
{
    const QString text = QAccessibleQuickItem::text(kind);
    if (kind == QAccessible::Name && text.isEmpty() && state().passwordEdit)
        return item()->property("label").toString();
    return text;
}

QStringList AccessibleItem::actionNames() const
{
    QStringList names = QAccessibleQuickItem::actionNames();
    if (isButton(*item()) && !names.contains(pressAction()))
        names.prepend(pressAction());
    // The first is what is done where none is named.
    if (names.removeAll(setFocusAction()) > 0)
        names.append(setFocusAction());
    return names;
}

void AccessibleItem::doAction(const QString &name)
{
    const bool presses = name == pressAction() || name == toggleAction();
    if (!presses || !isButton(*item()))
        QAccessibleQuickItem::doAction(name);
    else if (item()->isEnabled())
        pressSpace(item());
}
