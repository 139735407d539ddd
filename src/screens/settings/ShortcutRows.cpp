#include "screens/settings/ShortcutRows.h"

#include "base/KeyTap.h"

#include <utility>

ShortcutRows::ShortcutRows(const Prefs &prefs, const KeyTaps &taps, HotkeyRecorder &recorder,
                           std::function<void(const HotkeySpec &)> update)
    : m_prefs(prefs),
      m_recorder(recorder),
      m_update(std::move(update)),
      m_taps(taps)
{
    connect(&recorder, &HotkeyRecorder::changed, this, &ShortcutRows::changed);
    connect(&prefs, &Prefs::hotkeySpecChanged, this, &ShortcutRows::changed);
    refresh();
}

QString ShortcutRows::obstacle() const
{
    return m_holder.isEmpty()
               ? QString()
               : tr("%1 already has this shortcut. Choose another one, or free it there.").arg(m_holder);
}

void ShortcutRows::refresh()
{
    if (const QString before = std::exchange(m_holder, m_taps.holder()); before != m_holder)
        Q_EMIT changed();
}

void ShortcutRows::resetToDefault()
{
    m_recorder.cancel();
    m_update(HotkeySpec());
    refresh();
}
