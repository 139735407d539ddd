#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QVariantMap>

/// One entry of a menu with those below it, as com.canonical.dbusmenu sends it: (ia{sv}av).
struct MenuLayout
{
    int id = 0;
    QVariantMap properties;
    QList<QDBusVariant> children; ///< each holds a `MenuLayout`
};
Q_DECLARE_METATYPE(MenuLayout)

QDBusArgument &operator<<(QDBusArgument &argument, const MenuLayout &layout);
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuLayout &layout);
