#include "tray/ItemPixmap.h"

#include <QImage>
#include <QtEndian>

ItemPixmap ItemPixmap::of(const QImage &image)
{
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    ItemPixmap pixmap{argb.width(), argb.height(), QByteArray(argb.sizeInBytes(), Qt::Uninitialized)};
    qToBigEndian<quint32>(argb.constBits(), argb.sizeInBytes() / 4, pixmap.pixels.data());
    return pixmap;
}

QDBusArgument &operator<<(QDBusArgument &argument, const ItemPixmap &pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.pixels;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, ItemPixmap &pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.pixels;
    argument.endStructure();
    return argument;
}
