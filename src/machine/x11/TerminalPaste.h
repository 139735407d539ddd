#pragma once

#include "base/KeyTap.h"

#include <span>

#include <xkbcommon/xkbcommon.h>

struct FocusedWindow;

/// How a program is told from the keyboard to paste.
struct PasteKeystroke
{
    xkb_keysym_t symbol; ///< what its key types
    KeyChord chord;      ///< its modifiers, and the place of the key on the ANSI keyboard
    bool pastesPrimary;  ///< the PRIMARY selection instead of the clipboard
};

/// The keystrokes that the program behind this window understands, the best one first; nothing for a program
/// that is not known.
std::span<const PasteKeystroke> pasteKeystrokes(const FocusedWindow &window);

/// Those of a program that is not known, for what has the keyboard there.
std::span<const PasteKeystroke> pasteKeystrokes(bool isTerminal);
