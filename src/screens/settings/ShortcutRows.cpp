#include "screens/settings/ShortcutRows.h"

#include "dictation/HotkeyRecorder.h"
#include "preferences/Defaults.h"
#include "preferences/Prefs.h"

#include <utility>

ShortcutRows::ShortcutRows(const Defaults &defaults, HotkeyRecorder &recorder,
                           std::function<void(const HotkeySpec &)> update)
    : m_defaults(defaults),
      m_recorder(recorder),
      m_update(std::move(update))
{
    connect(&recorder, &HotkeyRecorder::changed, this, &ShortcutRows::changed);
    connect(&defaults, &Defaults::changed, this, [this](const QString &key) {
        if (key == PrefsKey::hotkeySpec)
            Q_EMIT changed();
    });
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

HotkeySpec ShortcutRows::spec() const
{
    return HotkeySpec::decode(m_defaults.text(PrefsKey::hotkeySpec));
}
