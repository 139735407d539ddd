#pragma once

#include "service/accounts/AttemptLimits.h"
#include "service/accounts/Database.h"
#include "service/machine/WallClock.h"

#include <chrono>
#include <expected>
#include <mutex>
#include <string>
#include <string_view>

/// The codes by which people sign in: one for an e-mail address and the network that asked for it, good for
/// ten minutes, one sign-in, and five tries from any one network. Kept in the accounts' database. May be used
/// from several threads.
///
/// How often codes may be asked for and tried is limited for the network and for the e-mail address. A
/// network that has signed the address in before has limits of its own, so that strangers keep nobody out who
/// signs in from home; and what a stranger asks for voids no code of somebody else. Each try is compared with
/// one code: the one that its own network asked for, else the newest.
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

    /// `key` is that of the codes' hashes. No more than `codesPerDay` are issued in any 24 hours; 0: any
    /// number.
    SignIns(const std::filesystem::path &database, std::string key, WallClock now, int codesPerDay = 0);

    /// A fresh code for the address; one that the same network asked for before no longer works.
    std::expected<Code, Failure> issue(std::string_view email, std::string_view network);
    /// Uses the address's code up, if these are its digits. `noCode`: there is none, or no longer.
    std::expected<void, Failure> redeem(std::string_view email, std::string_view digits,
                                        std::string_view network);

private:
    bool isKnown(std::string_view email, std::string_view network);
    void forgetOld();
    std::int64_t now() const; // seconds since 1970-01-01

    std::mutex m_mutex;
    Database m_database;
    std::string m_key;
    WallClock m_now;
    int m_codesPerDay;
};
