#pragma once

#include <QRect>

#include <optional>

class QScreen;
class X11Connection;

/// The screen that the user works on: that of the window with the keyboard, else the one with the pointer.
struct MainScreen
{
    QScreen *screen; ///< never null

    static std::optional<MainScreen> find(X11Connection &connection);

    /// What docks leave free of it, in points.
    QRect visibleFrame(X11Connection &connection) const;
};
