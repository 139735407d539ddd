#pragma once

#include "service/accounts/AttemptLimits.h"
#include "service/accounts/Database.h"
#include "service/machine/WallClock.h"

#include <chrono>
#include <expected>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

/// The codes by which people sign in: one per e-mail address, good for ten minutes, five tries and one
/// sign-in. Kept in the accounts' database. May be used from several threads.
///
/// How often codes may be asked for and tried is limited for the e-mail address and for the network that
/// the request comes from.
class SignIns
{
public:
    static constexpr std::chrono::minutes lifetime{10};

    struct Code
    {
        std::string digits;
        std::chrono::sys_seconds expires;
    };
    struct Failure
    {
        enum class Kind { wrongCode, noCode, tooMany };

        Kind kind = Kind::wrongCode;
        std::chrono::seconds wait{}; ///< of tooMany: until it may be tried again
    };

    SignIns(const std::filesystem::path &database, WallClock now);

    /// A fresh code for the address; one that was issued before no longer works.
    std::expected<Code, Failure> issue(std::string_view email, std::string_view network);
    /// Uses the address's code up, if these are its digits. `noCode`: there is none, or no longer.
    std::expected<void, Failure> redeem(std::string_view email, std::string_view digits,
                                        std::string_view network);

private:
    using Limit = AttemptLimits::Limit;

    /// Counts an attempt, or tells how long to wait with it.
    std::optional<std::chrono::seconds> waitFor(const Limit &byAddress, std::string_view email,
                                                const Limit &byNetwork, std::string_view network);
    void forgetOld();
    std::int64_t now() const; // seconds since 1970-01-01

    std::mutex m_mutex;
    Database m_database;
    WallClock m_now;
};
