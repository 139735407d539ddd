#include "screens/settings/ShortcutRows.h"

#include "dictation/HotkeyRecorder.h"
#include "preferences/Prefs.h"

#include <utility>

ShortcutRows::ShortcutRows(const Prefs &prefs, HotkeyRecorder &recorder,
                           std::function<void(const HotkeySpec &)> update)
    : m_prefs(prefs),
      m_recorder(recorder),
      m_update(std::move(update))
{
    connect(&recorder, &HotkeyRecorder::changed, this, &ShortcutRows::changed);
    connect(&prefs, &Prefs::hotkeySpecChanged, this, &ShortcutRows::changed);
}

QString ShortcutRows::shortcut() const
{
    return m_prefs.hotkeySpec().displayString();
}

bool ShortcutRows::usesFn() const
{
    return m_prefs.hotkeySpec().fn;
}

bool ShortcutRows::capturing() const
{
    return m_recorder.capturing();
}

QString ShortcutRows::pressed() const
{
    return m_recorder.pressed();
}

QString ShortcutRows::hint() const
{
    return m_recorder.hint().value_or(QString());
}

void ShortcutRows::change()
{
    m_recorder.begin();
}

void ShortcutRows::cancel()
{
    m_recorder.cancel();
}

void ShortcutRows::resetToDefault()
{
    m_recorder.cancel();
    m_update(HotkeySpec());
}
