#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QMetaType>

class QImage;

/// One size of an icon as a StatusNotifierItem sends it, (iiay): ARGB with 32 bits in network byte order.
struct ItemPixmap
{
    int width = 0;
    int height = 0;
    QByteArray pixels;

    static ItemPixmap of(const QImage &image);
};
Q_DECLARE_METATYPE(ItemPixmap)

QDBusArgument &operator<<(QDBusArgument &argument, const ItemPixmap &pixmap);
const QDBusArgument &operator>>(const QDBusArgument &argument, ItemPixmap &pixmap);
