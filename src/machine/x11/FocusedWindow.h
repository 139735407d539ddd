#pragma once

#include "machine/desktop/TerminalPaste.h"

#include <xcb/xproto.h>

class X11Connection;

/// The window that has the keyboard.
struct FocusedWindow : FocusedProgram
{
    /// Asks for the active window of the window manager, or else for the window with the input focus; at
    /// most XCB_INPUT_FOCUS_POINTER_ROOT when there is none.
    static xcb_window_t find(X11Connection &connection);
    static FocusedWindow read(X11Connection &connection);
};
