#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// One place where an account is signed in.
struct DeviceSession
{
    std::int64_t id = 0;
    std::string device;
    std::chrono::sys_seconds createdAt;
    std::chrono::sys_seconds lastUsedAt; ///< to the minute
    bool current = false;                ///< the one that asks
};
