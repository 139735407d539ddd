#pragma once

#include "service/accounts/Account.h"
#include "service/accounts/Database.h"

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

/// Accounts, their sessions and what they used on each UTC day, in one SQLite file that several
/// processes may have open. May be used from several threads.
class Accounts
{
public:
    using Today = std::function<std::chrono::sys_days()>;

    explicit Accounts(const std::filesystem::path &database, Today today = utcToday);

    /// Opens a session for the account of this e-mail address, making the account when it is new, and
    /// returns the token, which can never be read again. Without `dailyMinutes` an account keeps its
    /// allowance; a new one gets 60 minutes.
    std::string openSession(const std::string &email, const std::string &device,
                            std::optional<int> dailyMinutes);

    /// The account whose session the token is.
    std::optional<Account> find(std::string_view token);

    /// Takes seconds from today's allowance and returns what remains; nothing when none was left. What
    /// goes beyond the allowance is forgiven, so that a last dictation is never cut.
    std::optional<std::int64_t> charge(const Account &account, std::int64_t seconds);
    /// Gives back what was charged today for work that failed.
    void refund(const Account &account, std::int64_t seconds);

    static std::chrono::sys_days utcToday();

private:
    std::int64_t day() const; // since 1970-01-01

    std::mutex m_mutex;
    Database m_database;
    Today m_today;
};
