#pragma once

#include "base/KeyTap.h"
#include "machine/desktop/Guard.h"

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QList>
#include <QObject>
#include <QString>

#include <chrono>
#include <memory>

/// Keys of a Plasma session: global shortcuts that KWin holds for us (org.kde.KGlobalAccel). It takes the key
/// for itself and tells of each press, again and again while it is held. They are shown and can be changed
/// among the desktop's shortcuts, under our name.
///
/// Shortcuts are kept there when a program ends; ours are out of use then, however we end.
class PlasmaKeyTaps final : public QObject, public KeyTaps
{
    Q_OBJECT
public:
    PlasmaKeyTaps();
    ~PlasmaKeyTaps() override;
    Q_DISABLE_COPY_MOVE(PlasmaKeyTaps)

    /// Whether KWin is there to hold them.
    bool isOpen() const { return m_isOpen; }

    /// How long fingers may still be on the keys of the shortcut.
    std::chrono::milliseconds restless() const;

    /// Takes ours out of the desktop's shortcuts for good; false where there are none.
    bool remove();

    std::unique_ptr<KeyTap> install(std::span<const KeyChord> chords, Handler handler) override;
    QString holder() const override { return m_holder; }
    void follow(std::weak_ptr<const Listener> listener) override { m_listener = std::move(listener); }

private:
    class Tap;
    /// What the desktop knows as one shortcut: all chords of one key.
    struct Action
    {
        QString name;
        QList<KeyChord> chords;
        bool isHeld = false;
        bool operator==(const Action &other) const { return name == other.name && chords == other.chords; }
    };

    Q_SLOT void pressed(const QString &component, const QString &action, qlonglong time);
    Q_SLOT void released(const QString &component, const QString &action, qlonglong time);
    Q_SLOT void changed(const QDBusMessage &message);
    bool watch(std::span<const KeyChord> chords);
    bool take(const Action &action);
    void letGo(const Action &action);

    QDBusServiceWatcher m_watcher;
    bool m_isOpen = false;
    QList<Action> m_actions;
    QString m_holder;
    std::weak_ptr<const Listener> m_listener;
    std::chrono::steady_clock::time_point m_released;
    Tap *m_tap = nullptr;
    std::unique_ptr<Guard> m_guard;
};
