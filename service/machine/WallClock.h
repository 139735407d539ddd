#pragma once

#include <chrono>
#include <functional>
#include <string>

/// Moments in writing.
namespace Timestamp {

/// As in 2026-03-01T09:40:00Z (RFC 3339).
std::string of(std::chrono::sys_seconds moment);

} // namespace Timestamp

/// Tells the time, in UTC.
using WallClock = std::function<std::chrono::sys_seconds()>;

/// The machine's own.
std::chrono::sys_seconds systemTime();
