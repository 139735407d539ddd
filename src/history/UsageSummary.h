#pragma once

/// What a number of dictations amount to.
struct UsageSummary
{
    int dictations = 0;
    double seconds = 0; ///< of recorded audio
    double costUSD = 0; ///< estimated, for those made with a key of the user's own

    bool operator==(const UsageSummary &) const = default;
};
