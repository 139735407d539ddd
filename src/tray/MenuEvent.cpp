#include "tray/MenuEvent.h"

QDBusArgument &operator<<(QDBusArgument &argument, const MenuEvent &event)
{
    argument.beginStructure();
    argument << event.id << event.type << event.data << event.time;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEvent &event)
{
    argument.beginStructure();
    argument >> event.id >> event.type >> event.data >> event.time;
    argument.endStructure();
    return argument;
}
