#pragma once

#include <chrono>
#include <string>

/// Moments in writing.
namespace Timestamp {

/// As in 2026-03-01T09:40:00Z (RFC 3339).
std::string of(std::chrono::sys_seconds moment);

} // namespace Timestamp
