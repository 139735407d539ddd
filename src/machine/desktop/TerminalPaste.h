#pragma once

#include "base/KeyTap.h"

#include <QByteArray>

#include <span>

#include <xkbcommon/xkbcommon.h>

/// What the window that has the keyboard says about the program behind it.
struct FocusedProgram
{
    QByteArray instance;  ///< first part of WM_CLASS on X11
    QByteArray className; ///< second part of WM_CLASS on X11, the application's id on Wayland
    qint64 pid = 0;       ///< as the window says; 0 when it does not
    QByteArray command;   ///< the process name, of which the kernel keeps 15 characters

    /// The name of the process; empty where it is not known.
    static QByteArray commandOf(qint64 pid);
};

/// How a program is told from the keyboard to paste.
struct PasteKeystroke
{
    xkb_keysym_t symbol; ///< what its key types
    KeyChord chord;      ///< its modifiers, and the place of the key on the ANSI keyboard
    bool pastesPrimary;  ///< the PRIMARY selection instead of the clipboard
};

/// The keystrokes that the program behind this window understands, the best one first; nothing for a program
/// that is not known.
std::span<const PasteKeystroke> pasteKeystrokes(const FocusedProgram &window);

/// Those of a program that is not known, for what has the keyboard there.
std::span<const PasteKeystroke> pasteKeystrokes(bool isTerminal);
