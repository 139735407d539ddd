#pragma once

#include "tray/ItemPixmap.h"

#include <QList>
#include <QString>

/// What a panel shows when the pointer rests on an item: (sa(iiay)ss).
struct ItemToolTip
{
    QString iconName;
    QList<ItemPixmap> icon;
    QString title;
    QString text;
};
Q_DECLARE_METATYPE(ItemToolTip)

QDBusArgument &operator<<(QDBusArgument &argument, const ItemToolTip &toolTip);
const QDBusArgument &operator>>(const QDBusArgument &argument, ItemToolTip &toolTip);
