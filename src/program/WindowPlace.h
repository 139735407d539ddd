#pragma once

#include <QMargins>
#include <QSize>

class QWindow;

/// The place of a window with its frame on the part of a screen that docks and panels leave free.
namespace WindowPlace {

/// About what the usual desktops put around a window, title bar above; the true one is known once it is
/// shown.
inline constexpr QMargins usualFrame{8, 48, 8, 8};

/// How large a window can be there without hiding anything of its frame.
QSize room(const QSize &desk, const QMargins &frame);

/// Makes a window that is not shown fit on its screen: neither it nor the least size it can be given is
/// larger than there is room for. `least` is that size where there is; empty where the desktop decides.
void fit(QWindow &window, const QSize &least);

/// Moves a window that is not shown to the middle of the first screen, or to its upper left edge where it is
/// larger, so that its title bar can be reached.
void centre(QWindow &window);

/// Whether any of it is on a screen.
bool isOnSomeScreen(const QWindow &window);

} // namespace WindowPlace
