#include "dictation/HotkeyMonitor.h"

#include <QLoggingCategory>

#include <array>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.hotkey", QtInfoMsg)

} // namespace

HotkeyMonitor::HotkeyMonitor(KeyTaps &taps, const HotkeySpec &spec, std::function<void()> onTrigger,
                             std::function<void()> onCancel)
    : m_taps(taps),
      m_spec(spec),
      m_requiredFlags(spec.requiredFlags()),
      m_onTrigger(std::move(onTrigger)),
      m_onCancel(std::move(onCancel))
{
}

bool HotkeyMonitor::start()
{
    const std::array chords{KeyChord{m_spec.keyCode, m_requiredFlags}};
    m_tap = m_taps.install(chords, [this](const KeyEvent &event) { return handle(event); });
    if (!m_tap) {
        qCWarning(log, "Sayvane: could not create event tap. Is Accessibility permission granted?");
        return false;
    }
    m_tap->enable();
    return true;
}

void HotkeyMonitor::stop()
{
    m_tap.reset();
}

KeyVerdict HotkeyMonitor::handle(const KeyEvent &event)
{
    if (event.type == KeyEventType::tapDisabledByTimeout ||
        event.type == KeyEventType::tapDisabledByUserInput) {
        if (m_tap)
            m_tap->enable();
        return KeyVerdict::pass;
    }
    if (m_suspended)
        return KeyVerdict::pass;
    const bool isPress = event.type == KeyEventType::keyDown && !event.isAutorepeat;
    if (isShortcut(event)) {
        if (isPress)
            m_onTrigger();
        return KeyVerdict::swallow;
    }
    if (isEscape(event)) {
        if (isPress)
            m_onCancel();
        return KeyVerdict::swallow;
    }
    return KeyVerdict::pass;
}

bool HotkeyMonitor::isShortcut(const KeyEvent &event) const
{
    return event.keyCode == m_spec.keyCode && (event.flags & KeyFlags::compared) == m_requiredFlags;
}

bool HotkeyMonitor::isEscape(const KeyEvent &event) const
{
    return event.keyCode == escapeKeyCode && m_interceptEscape && (event.flags & escapeDisqualifiers) == 0;
}

void HotkeyMonitor::setInterceptEscape(bool intercept)
{
    if (m_interceptEscape == intercept)
        return;
    m_interceptEscape = intercept;
    watch();
}

void HotkeyMonitor::setSuspended(bool suspended)
{
    if (m_suspended == suspended)
        return;
    m_suspended = suspended;
    watch();
}

void HotkeyMonitor::watch()
{
    if (!m_tap)
        return;
    // Escape counts with Fn held too.
    const std::array chords{KeyChord{m_spec.keyCode, m_requiredFlags}, KeyChord{escapeKeyCode, 0},
                            KeyChord{escapeKeyCode, KeyFlags::fn}};
    const size_t count = m_suspended ? 0 : m_interceptEscape ? chords.size() : 1;
    m_tap->watch(std::span(chords).first(count));
}
