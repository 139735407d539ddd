#pragma once

#include "machine/x11/X11Connection.h"
#include "machine/x11/X11Keyboard.h"

#include <QStringList>

/// Another program's window that has the keyboard focus and writes down what reaches it.
class RecordingWindow
{
public:
    /// Shown and focused on return; the names become its WM_CLASS.
    explicit RecordingWindow(const QByteArray &instance = "recorder", const QByteArray &className = "Recorder");

    /// Such as "+v Control" for a press with Ctrl held, "-v" for a release; the modifiers are the server's
    /// names. Repeats of a held key come as further presses.
    const QStringList &log() const { return m_log; }
    void clear() { m_log.clear(); }
    /// Waits for that line while nothing else of the thread's events is handled; false after two seconds.
    bool awaits(const QString &line);

private:
    void handle(const xcb_generic_event_t &event);
    QString describe(const xcb_key_press_event_t &event) const;

    X11Connection m_connection;
    X11Keyboard m_keyboard;
    QStringList m_log;
    bool m_isFocused = false;
    xcb_window_t m_window = 0;
};
