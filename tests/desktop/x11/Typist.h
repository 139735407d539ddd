#pragma once

#include "machine/x11/X11Connection.h"
#include "machine/x11/X11Keyboard.h"

#include <QProcess>
#include <QStringList>

/// Fingers on the server's keyboard, which is not the one that programs type on (XTEST): presses and releases keys
/// by physical position, through a connection of its own.
class Typist
{
public:
    Typist();
    /// Lets go of everything, turns the locks off, and goes back to the US layout.
    ~Typist();
    Q_DISABLE_COPY_MOVE(Typist)

    void press(int evdevKey) { fake(XCB_KEY_PRESS, evdevKey); }
    void release(int evdevKey) { fake(XCB_KEY_RELEASE, evdevKey); }
    void tap(int evdevKey)
    {
        press(evdevKey);
        release(evdevKey);
    }
    bool isAnyKeyDown() const { return m_keyboard.keysDown().any(); }
    /// To the server, whatever the finger does.
    bool isDown(int evdevKey) const { return m_keyboard.keysDown()[static_cast<std::size_t>(evdevKey) + 8]; }
    uint16_t lockedModifiers() const;
    void lockGroup(uint8_t group);
    /// Runs setxkbmap with these arguments.
    static void setLayout(const QStringList &arguments)
    {
        QProcess::execute(QString::fromLatin1("setxkbmap"), arguments);
    }

private:
    void fake(uint8_t event, int evdevKey);

    X11Connection m_connection;
    X11Keyboard m_keyboard;
    uint8_t m_firstEvent = 0;
    uint8_t m_device = 0;
    X11Keyboard::Keys m_pressed; // by these fingers, whatever the server holds of it
};
