#pragma once

#include "platform/Clock.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>

/// Asks the desktop to unlock a keyring, or to make the first one; the desktop shows its own prompt.
///
/// It returns at once. One prompt is open at a time, and after one that came to nothing there is a
/// minute of quiet in which further requests are ignored.
class KeyringPrompt final : public QObject
{
    Q_OBJECT
public:
    KeyringPrompt(const Clock &clock, QDBusConnection bus);

    /// Object paths of locked items or collections.
    void unlock(const QStringList &objects);
    void createDefaultCollection();

private Q_SLOTS:
    void promptCompleted(bool dismissed);

private:
    bool mayAsk() const;
    void ask(const QDBusMessage &request, int promptIndex);
    void show(const QString &prompt);
    void finish(bool granted);

    const Clock &m_clock;
    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QString m_prompt;
    bool m_pending = false;
    Clock::Duration m_quietUntil = Clock::Duration::min();
};
