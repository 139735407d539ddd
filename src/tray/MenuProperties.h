#pragma once

#include <QDBusArgument>
#include <QMetaType>
#include <QVariantMap>

/// The properties of one menu entry by its id: (ia{sv}).
struct MenuProperties
{
    int id = 0;
    QVariantMap properties;
};
Q_DECLARE_METATYPE(MenuProperties)

QDBusArgument &operator<<(QDBusArgument &argument, const MenuProperties &entry);
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuProperties &entry);
