#pragma once

#include <QString>

/// The display that the environment names, before anything depends on it.
namespace X11Display {

/// Why the display cannot be used, in one sentence for the user; empty when it can.
QString objection();

} // namespace X11Display
