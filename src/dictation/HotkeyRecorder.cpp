#include "dictation/HotkeyRecorder.h"

#include "base/KeyTap.h"
#include "dictation/HotkeyMonitor.h"

#include <utility>

using namespace Qt::StringLiterals;

HotkeyRecorder::HotkeyRecorder(LocalKeys &keys, std::function<HotkeyMonitor *()> running,
                               std::function<void(const HotkeySpec &)> update)
    : m_keys(keys),
      m_running(std::move(running)),
      m_update(std::move(update))
{
}

HotkeyRecorder::~HotkeyRecorder() = default;

void HotkeyRecorder::begin()
{
    if (m_monitor)
        return;
    publish(true, {}, std::nullopt);
    suspendRunning();
    m_monitor = m_keys.addMonitor([this](const LocalKeyEvent &event) { return handle(event); });
}

void HotkeyRecorder::cancel()
{
    removeMonitor();
    publish(false, {}, std::nullopt);
}

bool HotkeyRecorder::handle(const LocalKeyEvent &event)
{
    if (!m_capturing)
        return false;
    if (event.type == LocalKeyEventType::keyDown)
        return handleKeyDown(event);
    publish(true, HotkeySpec::modifierDisplay(event.flags), m_hint);
    return false;
}

bool HotkeyRecorder::handleKeyDown(const LocalKeyEvent &event)
{
    const HotkeySpec spec = HotkeySpec::of(event.keyCode, event.flags);
    const bool isPlain = (event.flags & KeyFlags::compared) == 0;
    if (isPlain && event.keyCode == HotkeyMonitor::escapeKeyCode)
        cancel();
    else if (isPlain && !spec.isFunctionKey())
        publish(true, {},
                tr("%1 on its own would be taken from every app. Hold Fn, ⌘, ⌥, ⌃ or ⇧ as well, or choose a "
                   "function key.")
                    .arg(HotkeySpec::keyNameFor(event.keyCode)));
    else
        apply(spec);
    return true;
}

void HotkeyRecorder::apply(const HotkeySpec &spec)
{
    cancel();
    m_update(spec);
}

void HotkeyRecorder::removeMonitor()
{
    m_monitor.reset();
    if (HotkeyMonitor *running = m_running())
        running->setSuspended(false);
}

void HotkeyRecorder::suspendRunning()
{
    if (HotkeyMonitor *running = m_running(); running && m_capturing)
        running->setSuspended(true);
}

void HotkeyRecorder::publish(bool capturing, const QString &pressed, const std::optional<QString> &hint)
{
    if (m_capturing == capturing && m_pressed == pressed && m_hint == hint)
        return;
    m_capturing = capturing;
    m_pressed = pressed;
    m_hint = hint;
    Q_EMIT changed();
}
