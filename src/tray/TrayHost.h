#pragma once

#include <QDBusServiceWatcher>
#include <QObject>

/// Whether a panel shows StatusNotifierItems at this moment, and when that changes.
class TrayHost final : public QObject
{
    Q_OBJECT
public:
    /// Begins to look; the answer comes later, by `changed`.
    void follow();

    bool isThere() const { return m_isThere; }

Q_SIGNALS:
    /// Also when one panel took the place of another.
    void changed();

private Q_SLOTS:
    void ask();

private:
    void conclude(bool isThere);

    QDBusServiceWatcher m_watcher;
    bool m_isThere = false;
};
