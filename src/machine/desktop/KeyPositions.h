#pragma once

#include <QtGlobal>

#include <cstdint>
#include <xkbcommon/xkbcommon.h>

/// The physical places of the keys: virtual key codes of the ANSI layout and the X server's keycodes, which
/// are the kernel's plus 8. What is printed on a key, and what the layout makes of it, plays no part.
namespace KeyPositions {

/// The key in the place of a virtual key code; 0 where there is none.
uint8_t xKeycode(qint64 keyCode);

/// The virtual key code of a key; -1 for a key that has none. Constant time.
qint64 keyCode(uint8_t xKeycode);

/// What the ANSI layout types there without a modifier; NoSymbol for an unknown code.
xkb_keysym_t symbol(qint64 keyCode);

} // namespace KeyPositions
