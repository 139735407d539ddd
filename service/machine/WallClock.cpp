#include "service/machine/WallClock.h"

#include <ctime>

std::string Timestamp::of(std::chrono::sys_seconds moment)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(moment);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc)};
}

std::chrono::sys_seconds systemTime()
{
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}
