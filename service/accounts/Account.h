#pragma once

#include <cstdint>
#include <string>

/// Someone who may use the service, and how much of today's allowance is gone.
struct Account
{
    std::int64_t id = 0;
    std::string email;
    std::int64_t dailySeconds = 0;
    std::int64_t usedSeconds = 0; ///< today, with what is held for work under way
    bool disabled = false;        ///< by the operator

    std::int64_t remainingSeconds() const
    {
        return usedSeconds < dailySeconds ? dailySeconds - usedSeconds : 0;
    }
};
