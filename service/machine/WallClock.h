#pragma once

#include <chrono>
#include <functional>

/// Tells the time, in UTC.
using WallClock = std::function<std::chrono::sys_seconds()>;

/// The machine's own.
std::chrono::sys_seconds systemTime();
