#pragma once

#include "service/accounts/Account.h"
#include "service/accounts/Database.h"
#include "service/accounts/DeviceSession.h"
#include "service/machine/WallClock.h"

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Accounts, their sessions and what they used on each UTC day, in one SQLite file that several
/// processes may have open. May be used from several threads. A session that was not used for a year is
/// forgotten.
class Accounts
{
public:
    explicit Accounts(const std::filesystem::path &database, WallClock now = systemTime);

    bool has(std::string_view email);

    /// Opens a session for the account of this e-mail address, making the account when it is new, and
    /// returns the token, which can never be read again. Without `dailyMinutes` an account keeps its
    /// allowance; a new one gets 60 minutes.
    std::string openSession(const std::string &email, const std::string &device,
                            std::optional<int> dailyMinutes);

    /// The account whose session the token is.
    std::optional<Account> find(std::string_view token);

    /// The account's sessions, the last used one first; `token` is the one that asks.
    std::vector<DeviceSession> sessions(const Account &account, std::string_view token);
    /// Ends one session of the account, from this moment on; false when it has none of that number.
    bool closeSession(const Account &account, std::int64_t id);
    /// Ends the session of the token; false when there is none.
    bool closeSession(std::string_view token);

    /// Takes seconds from today's allowance and returns what remains; nothing when none was left. What
    /// goes beyond the allowance is forgiven, so that a last dictation is never cut.
    std::optional<std::int64_t> charge(const Account &account, std::int64_t seconds);
    /// Gives back what was charged today for work that failed.
    void refund(const Account &account, std::int64_t seconds);

private:
    std::int64_t day() const; // since 1970-01-01
    std::int64_t now() const; // seconds since then

    std::mutex m_mutex;
    Database m_database;
    WallClock m_now;
};
