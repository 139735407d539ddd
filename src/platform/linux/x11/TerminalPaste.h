#pragma once

struct FocusedWindow;

/// How a program is told from the keyboard to paste.
enum class PasteKeystroke {
    controlV,      ///< most programs
    controlShiftV, ///< terminals, where Ctrl+V belongs to the program inside
    shiftInsert,   ///< old terminals; they paste the PRIMARY selection
};

/// The keystroke that this window understands.
PasteKeystroke pasteKeystroke(const FocusedWindow &window);
