#include "tray/StatusNotifierItem.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QGuiApplication>
#include <QImage>
#include <QtEndian>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString itemPath = u"/StatusNotifierItem"_s;
constexpr const char *activationToken = "XDG_ACTIVATION_TOKEN";

/// Whether windows need a token of the compositor's to come to the front.
bool tokensCount()
{
    return QGuiApplication::platformName().startsWith("wayland"_L1);
}

} // namespace

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

QDBusArgument &operator<<(QDBusArgument &argument, const ItemToolTip &toolTip)
{
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, ItemToolTip &toolTip)
{
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

StatusNotifierItem::StatusNotifierItem(Needs needs) : m_needs(std::move(needs)), m_menu(m_needs.entries)
{
    qDBusRegisterMetaType<ItemPixmap>();
    qDBusRegisterMetaType<QList<ItemPixmap>>();
    qDBusRegisterMetaType<ItemToolTip>();
}

StatusNotifierItem::~StatusNotifierItem()
{
    withdraw();
}

void StatusNotifierItem::offer()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    constexpr auto contents =
        QDBusConnection::ExportScriptableContents | QDBusConnection::ExportAllProperties;
    bus.registerObject(itemPath, this, contents);
    bus.registerObject(menuPath().path(), &m_menu, contents);
    QDBusMessage message =
        QDBusMessage::createMethodCall(u"org.kde.StatusNotifierWatcher"_s, u"/StatusNotifierWatcher"_s,
                                       u"org.kde.StatusNotifierWatcher"_s, u"RegisterStatusNotifierItem"_s);
    // The connection's own name: GNOME's extension AppIndicator forgets what it has read of an item that
    // registers by another one, whenever it hears later that this name has an owner.
    message.setArguments({bus.baseService()});
    message.setAutoStartService(false);
    bus.send(message);
}

void StatusNotifierItem::withdraw()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterObject(itemPath);
    bus.unregisterObject(menuPath().path());
}

void StatusNotifierItem::show(const Picture &picture)
{
    m_picture = picture;
    Q_EMIT NewIcon();
    Q_EMIT NewToolTip();
}

void StatusNotifierItem::Activate(int, int)
{
    QMetaObject::invokeMethod(this, m_needs.activate, Qt::QueuedConnection);
}

void StatusNotifierItem::SecondaryActivate(int x, int y)
{
    Activate(x, y);
}

void StatusNotifierItem::XAyatanaSecondaryActivate(uint)
{
    Activate(0, 0);
}

void StatusNotifierItem::ContextMenu(int x, int y)
{
    QMetaObject::invokeMethod(
        this,
        [this, x, y] {
            m_needs.showMenu({x, y});
        },
        Qt::QueuedConnection);
}

void StatusNotifierItem::Scroll(int, const QString &)
{
    // Nothing here has a scale.
}

void StatusNotifierItem::ProvideXdgActivationToken(const QString &token)
{
    if (tokensCount())
        qputenv(activationToken, token.toUtf8()); // where Qt looks for it when a window asks for the front
}
