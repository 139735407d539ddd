#include "tray/StatusNotifierItem.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString itemPath = u"/StatusNotifierItem"_s;

} // namespace

StatusNotifierItem::StatusNotifierItem(std::function<QList<MenuEntry>()> entries,
                                       std::function<void()> activate)
    : m_activate(std::move(activate)),
      m_menu(std::move(entries)),
      m_name(u"org.kde.StatusNotifierItem-%1-1"_s.arg(QCoreApplication::applicationPid()))
{
    qDBusRegisterMetaType<ItemPixmap>();
    qDBusRegisterMetaType<QList<ItemPixmap>>();
    qDBusRegisterMetaType<ItemToolTip>();
    QDBusConnection bus = QDBusConnection::sessionBus();
    constexpr auto contents =
        QDBusConnection::ExportScriptableContents | QDBusConnection::ExportAllProperties;
    bus.registerObject(itemPath, this, contents);
    bus.registerObject(menuPath().path(), &m_menu, contents);
    bus.registerService(m_name);
}

StatusNotifierItem::~StatusNotifierItem()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterService(m_name);
    bus.unregisterObject(itemPath);
    bus.unregisterObject(menuPath().path());
}

void StatusNotifierItem::offer()
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(u"org.kde.StatusNotifierWatcher"_s, u"/StatusNotifierWatcher"_s,
                                       u"org.kde.StatusNotifierWatcher"_s, u"RegisterStatusNotifierItem"_s);
    message.setArguments({m_name});
    message.setAutoStartService(false);
    QDBusConnection::sessionBus().send(message);
}

void StatusNotifierItem::setIcon(const QList<ItemPixmap> &icon, const QString &toolTip)
{
    m_icon = icon;
    m_toolTip = toolTip;
    Q_EMIT NewIcon();
    Q_EMIT NewToolTip();
}

void StatusNotifierItem::Activate(int, int)
{
    QMetaObject::invokeMethod(this, m_activate, Qt::QueuedConnection);
}

void StatusNotifierItem::SecondaryActivate(int, int)
{
    QMetaObject::invokeMethod(this, m_activate, Qt::QueuedConnection);
}
