#pragma once

#include "base/KeyTap.h"
#include "preferences/HotkeySpec.h"

#include <atomic>
#include <functional>
#include <memory>

/// Recognises the dictation shortcut, and Escape while a recording runs, in every application. Both are
/// taken out of the event stream; every other key passes untouched.
///
/// A monitor that was stopped is not started again; its owner makes a new one.
class HotkeyMonitor
{
public:
    static constexpr qint64 escapeKeyCode = 53;
    /// Escape held with any of these is not a cancel.
    static constexpr quint64 escapeDisqualifiers =
        KeyFlags::shift | KeyFlags::control | KeyFlags::option | KeyFlags::command;

    /// The callbacks are called from within the tap, on its thread: they only schedule work.
    HotkeyMonitor(KeyTaps &taps, const HotkeySpec &spec, std::function<void()> onTrigger,
                  std::function<void()> onCancel);

    /// Installs the tap; false, with a line in the log, when that is not possible.
    bool start();
    /// Removes the tap. Safe to call when not started.
    void stop();

    /// The decision for one event, on any thread. It allocates nothing.
    KeyVerdict handle(const KeyEvent &event);

    bool interceptEscape() const { return m_interceptEscape; }
    /// Whether Escape cancels: true exactly while recording.
    void setInterceptEscape(bool intercept);

    bool suspended() const { return m_suspended; }
    /// While suspended every key passes, the shortcut included.
    void setSuspended(bool suspended);

private:
    void watch();
    bool isShortcut(const KeyEvent &event) const;
    bool isEscape(const KeyEvent &event) const;

    KeyTaps &m_taps;
    HotkeySpec m_spec;
    quint64 m_requiredFlags;
    std::function<void()> m_onTrigger;
    std::function<void()> m_onCancel;
    std::atomic<bool> m_interceptEscape = false;
    std::atomic<bool> m_suspended = false;
    std::unique_ptr<KeyTap> m_tap;
};
