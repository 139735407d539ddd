#pragma once

#include <QByteArray>

#include <xcb/xproto.h>

class X11Connection;

/// What the window that has the keyboard says about the program behind it.
struct FocusedWindow
{
    QByteArray instance;  ///< first part of WM_CLASS
    QByteArray className; ///< second part of WM_CLASS
    qint64 pid = 0;       ///< as the window says; 0 when it does not
    QByteArray command;   ///< the process name, of which the kernel keeps 15 characters

    /// Asks for the active window of the window manager, or else for the window with the input focus; at
    /// most XCB_INPUT_FOCUS_POINTER_ROOT when there is none.
    static xcb_window_t find(X11Connection &connection);
    static FocusedWindow read(X11Connection &connection);
};
