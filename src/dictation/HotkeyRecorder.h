#pragma once

#include "base/LocalKeys.h"
#include "preferences/HotkeySpec.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class HotkeyMonitor;

/// Takes the next key pressed in the program's own windows as the new dictation shortcut. While it listens,
/// the running shortcut is suspended.
class HotkeyRecorder final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool capturing READ capturing NOTIFY changed)
    Q_PROPERTY(QString pressed READ pressed NOTIFY changed)
    Q_PROPERTY(QString hint READ hintText NOTIFY changed)
public:
    /// `running` is the installed shortcut, null when there is none; `update` stores a new one and puts it
    /// in its place.
    HotkeyRecorder(LocalKeys &keys, std::function<HotkeyMonitor *()> running,
                   std::function<void(const HotkeySpec &)> update);
    ~HotkeyRecorder() override;

    bool capturing() const { return m_capturing; }
    /// The modifiers now held, as people read them.
    const QString &pressed() const { return m_pressed; }
    /// Why the last key was refused.
    const std::optional<QString> &hint() const { return m_hint; }

    Q_INVOKABLE void begin();
    /// Stops listening; the shortcut stays as it was.
    Q_INVOKABLE void cancel();

public Q_SLOTS:
    /// Another shortcut was installed, or this one removed: a new one is suspended too while capturing.
    void suspendRunning();

Q_SIGNALS:
    void changed();

private:
    QString hintText() const { return m_hint.value_or(QString()); }
    bool handle(const LocalKeyEvent &event);
    bool handleKeyDown(const LocalKeyEvent &event);
    void apply(const HotkeySpec &spec);
    void removeMonitor();
    void publish(bool capturing, const QString &pressed, const std::optional<QString> &hint);

    LocalKeys &m_keys;
    std::function<HotkeyMonitor *()> m_running;
    std::function<void(const HotkeySpec &)> m_update;
    bool m_capturing = false;
    QString m_pressed;
    std::optional<QString> m_hint;
    std::unique_ptr<LocalKeyMonitor> m_monitor;
};
