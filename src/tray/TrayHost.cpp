#include "tray/TrayHost.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::StringLiterals;

namespace {

const QString name = u"org.kde.StatusNotifierWatcher"_s;
const QString path = u"/StatusNotifierWatcher"_s;

} // namespace

void TrayHost::follow()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return conclude(false);
    m_watcher.setConnection(bus);
    m_watcher.addWatchedService(name);
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &TrayHost::ask);
    // A watcher may be there before the panel that shows what it watches.
    bus.connect(name, path, name, u"StatusNotifierHostRegistered"_s, this, SLOT(ask()));
    bus.connect(name, path, name, u"StatusNotifierHostUnregistered"_s, this, SLOT(ask()));
    ask();
}

void TrayHost::ask()
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(name, path, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    message.setArguments({name, u"IsStatusNotifierHostRegistered"_s});
    message.setAutoStartService(false);
    auto *call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
        call->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *call;
        conclude(reply.isValid() && reply.value().variant().toBool());
    });
}

void TrayHost::conclude(bool isThere)
{
    m_isThere = isThere;
    Q_EMIT changed();
}
