#include "screens/settings/ShortcutRows.h"

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

void ShortcutRows::resetToDefault()
{
    m_recorder.cancel();
    m_update(HotkeySpec());
}
