#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

/// A desktop's notifications, as far as a program can tell.
class NotificationStandIn final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    NotificationStandIn()
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                           QDBusConnection::ExportScriptableSlots);
        bus.registerService(QStringLiteral("org.freedesktop.Notifications"));
    }

    /// All texts so far, and whether one stands there now.
    QStringList texts;
    bool isShowing = false;

public Q_SLOTS:
    Q_SCRIPTABLE uint Notify(const QString &, uint replaced, const QString &, const QString &, const QString &body,
                             const QStringList &, const QVariantMap &, int)
    {
        texts.append(body);
        isShowing = true;
        return replaced != 0 ? replaced : static_cast<uint>(texts.size());
    }
    Q_SCRIPTABLE void CloseNotification(uint) { isShowing = false; }
};
