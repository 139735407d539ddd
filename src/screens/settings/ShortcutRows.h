#pragma once

#include "preferences/HotkeySpec.h"

#include <QObject>
#include <QString>

#include <functional>

class HotkeyRecorder;
class Prefs;

/// Shows the dictation shortcut, and lets the user choose another.
class ShortcutRows final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString shortcut READ shortcut NOTIFY changed)
    Q_PROPERTY(bool usesFn READ usesFn NOTIFY changed)
    Q_PROPERTY(bool capturing READ capturing NOTIFY changed)
    Q_PROPERTY(QString pressed READ pressed NOTIFY changed)
    Q_PROPERTY(QString hint READ hint NOTIFY changed)
public:
    /// `update` stores a shortcut and puts it in the place of the installed one.
    ShortcutRows(const Prefs &prefs, HotkeyRecorder &recorder,
                 std::function<void(const HotkeySpec &)> update);

    /// The stored shortcut as people read it.
    QString shortcut() const;
    bool usesFn() const;
    bool capturing() const;
    /// The modifiers held while capturing.
    QString pressed() const;
    /// Why the last key was refused; empty when none was.
    QString hint() const;

    Q_INVOKABLE void change();
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void resetToDefault();

Q_SIGNALS:
    void changed();

private:
    const Prefs &m_prefs;
    HotkeyRecorder &m_recorder;
    std::function<void(const HotkeySpec &)> m_update;
};
