#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QString>

/// What a panel says that the user did with an entry, as com.canonical.dbusmenu sends it: (isvu).
struct MenuEvent
{
    int id = 0;
    QString type; ///< such as "clicked"
    QDBusVariant data;
    uint time = 0;
};
Q_DECLARE_METATYPE(MenuEvent)

QDBusArgument &operator<<(QDBusArgument &argument, const MenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEvent &event);
