#include "service/machine/WallClock.h"

std::chrono::sys_seconds systemTime()
{
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}
