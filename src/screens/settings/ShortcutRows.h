#pragma once

#include "dictation/HotkeyRecorder.h"
#include "preferences/Prefs.h"

#include <QObject>
#include <QString>

#include <functional>

class KeyTaps;

/// Shows the dictation shortcut, and lets the user choose another.
class ShortcutRows final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString shortcut READ shortcut NOTIFY changed)
    Q_PROPERTY(bool usesFn READ usesFn NOTIFY changed)
    Q_PROPERTY(bool capturing READ capturing NOTIFY changed)
    Q_PROPERTY(QString pressed READ pressed NOTIFY changed)
    Q_PROPERTY(QString hint READ hint NOTIFY changed)
    Q_PROPERTY(QString obstacle READ obstacle NOTIFY changed)
public:
    /// `update` stores a shortcut and puts it in the place of the installed one.
    ShortcutRows(const Prefs &prefs, const KeyTaps &taps, HotkeyRecorder &recorder,
                 std::function<void(const HotkeySpec &)> update);

    /// The stored shortcut as people read it.
    QString shortcut() const { return m_prefs.hotkeySpec().displayString(); }
    bool usesFn() const { return m_prefs.hotkeySpec().fn; }
    bool capturing() const { return m_recorder.capturing(); }
    /// The modifiers held while capturing.
    QString pressed() const { return m_recorder.pressed(); }
    /// Why the last key was refused; empty when none was.
    QString hint() const { return m_recorder.hint().value_or(QString()); }

    /// Who has the shortcut in our place, and the way out; empty where nobody has.
    QString obstacle() const;

    /// Looks again who has it.
    void refresh();

    Q_INVOKABLE void change() { m_recorder.begin(); }
    Q_INVOKABLE void cancel() { m_recorder.cancel(); }
    Q_INVOKABLE void resetToDefault();

Q_SIGNALS:
    void changed();

private:
    const Prefs &m_prefs;
    HotkeyRecorder &m_recorder;
    std::function<void(const HotkeySpec &)> m_update;
    const KeyTaps &m_taps;
    QString m_holder;
};
