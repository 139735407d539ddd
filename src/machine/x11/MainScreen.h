#pragma once

#include <QList>
#include <QRect>

#include <optional>

class QScreen;
class X11Connection;

/// What docks and panels leave free of a monitor. The desktop's own _NET_WORKAREA is one rectangle for all
/// monitors, so that each monitor's area comes from what the docks reserve (EWMH, _NET_WM_STRUT_PARTIAL).
/// All in pixels of the root window.
namespace WorkArea {

/// The twelve numbers of a _NET_WM_STRUT_PARTIAL: left, right, top, bottom, and where each begins and ends.
using Strut = QList<uint32_t>;

/// A reservation that would leave nothing of the monitor was meant for another and does not count.
QRect of(const QRect &monitor, const QSize &root, const QList<Strut> &struts);

/// The reservations of all windows.
QList<Strut> reserved(X11Connection &connection);
QSize rootSize(X11Connection &connection);

} // namespace WorkArea

/// The screen that the user works on: that of the window with the keyboard, else the one with the pointer.
struct MainScreen
{
    QScreen *screen; ///< never null

    static std::optional<MainScreen> find(X11Connection &connection);

    /// What docks leave free of it, in points.
    QRect visibleFrame(X11Connection &connection) const;
};
