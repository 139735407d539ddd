#pragma once

#include <QString>

/// The display that windows will be on, Wayland's or X11's, before anything depends on it.
namespace DesktopDisplay {

/// Why there is none to be used, in one sentence for the user; empty when there is one.
QString objection();

} // namespace DesktopDisplay
