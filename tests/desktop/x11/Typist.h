#pragma once

#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/X11Keyboard.h"

#include <QStringList>

/// Fingers on the keyboard: presses and releases keys by physical position, through a connection of its own.
class Typist
{
public:
    Typist();
    /// Lets go of everything, turns the locks off, and goes back to the US layout.
    ~Typist();
    Q_DISABLE_COPY_MOVE(Typist)

    void press(int evdevKey);
    void release(int evdevKey);
    void tap(int evdevKey);
    bool isAnyKeyDown() const { return m_keyboard.keysDown().any(); }
    uint16_t lockedModifiers() const;
    void lockGroup(uint8_t group);
    /// Runs setxkbmap with these arguments.
    static void setLayout(const QStringList &arguments);

private:
    void fake(uint8_t event, int evdevKey);

    X11Connection m_connection;
    X11Keyboard m_keyboard;
};
