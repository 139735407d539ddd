#pragma once

#include "base/Presence.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QSet>
#include <QVariantMap>

#include <optional>
#include <thread>

/// What logind (org.freedesktop.login1) tells of the machine's sleep and the session's lock, and what the
/// screen savers of GNOME and of KDE tell of theirs.
///
/// Nothing is asked before somebody follows. Both buses are then asked on a thread of its own, which ends
/// with that; afterwards there are but the signals. Where there is no system bus or no logind, nobody sleeps.
class DesktopPresence final : public QObject, public Presence
{
    Q_OBJECT
public:
    DesktopPresence();
    ~DesktopPresence() override;

    bool isAway() const override { return m_sleeps || m_isLocked || !m_activeSavers.isEmpty(); }
    void follow(const Listener &listener) override;
    void followResume(const Listener &listener) override;
    std::unique_ptr<Wakefulness> delaySleep() override;

private:
    Q_SLOT void sleepChanged(bool sleeps);
    Q_SLOT void sessionChanged(const QString &interface, const QVariantMap &values);
    Q_SLOT void saverChanged(bool isActive, const QDBusMessage &message);

    void watch();
    // On a thread of their own.
    void listenToSavers();
    void enterSystemBus();

    template <typename Change>
    void change(Change change);

    std::thread m_entry;
    std::optional<QDBusConnection> m_system;
    QDBusServiceWatcher m_savers; // one that dies is active no more
    QSet<QString> m_activeSavers; // by their unique names
    bool m_isLocked = false;
    bool m_lockTold = false; // by the session itself, since it was asked
    bool m_sleeps = false;
    Listeners m_listeners;
    Listeners m_resumeListeners;
};
