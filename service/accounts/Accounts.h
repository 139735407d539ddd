#pragma once

#include "service/accounts/Account.h"
#include "service/accounts/Database.h"
#include "service/accounts/DeviceSession.h"
#include "service/accounts/Reservation.h"
#include "service/accounts/Schema.h"
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
    /// An account as its operator sees it.
    struct Entry
    {
        Account account;
        std::int64_t sessions = 0;
        std::optional<std::chrono::sys_seconds> lastUsedAt; ///< by any session
    };
    /// What one account used on one day.
    struct DayUsage
    {
        std::chrono::sys_days day;
        std::string email;
        std::int64_t seconds = 0;
    };
    struct Pruned
    {
        std::int64_t sessions = 0;
        std::int64_t days = 0; ///< of usage
    };

    /// Usage is kept for as long, unless the operator prunes more.
    static constexpr std::chrono::days usageKept{400};

    explicit Accounts(const std::filesystem::path &database, WallClock now = systemTime,
                      Schema::Older older = Schema::Older::isBroughtUpToDate);

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

    /// Holds seconds of today's allowance; nothing when none was left. What goes beyond the allowance is
    /// forgiven, so that a last dictation is never cut.
    std::optional<Reservation> reserve(const Account &account, std::int64_t seconds);

    /// Notes that the account has so many bytes of text edited today; false when that would be more than a
    /// day's speech, which is four times what the fastest speakers say in the allowance. It costs no seconds,
    /// so that the last dictation's text is still edited.
    bool spendText(const Account &account, std::int64_t bytes);

    /// All accounts, by e-mail address.
    std::vector<Entry> list();
    std::optional<Entry> entry(std::string_view email);
    /// A disabled account keeps its sessions, but nothing of the service. False when there is none of this
    /// address; so are the two that follow.
    bool setDisabled(std::string_view email, bool disabled);
    /// Forgets the account, its sessions and its usage.
    bool remove(std::string_view email);
    bool closeSessions(std::string_view email);
    /// The days since then on which an account, or any of them, used something; the newest first.
    std::vector<DayUsage> usage(std::optional<std::string> email, std::chrono::days last);
    /// Forgets sessions that are idle for a year, and usage that is older than this. Done by itself every
    /// day.
    Pruned prune(std::chrono::days usageOlderThan = usageKept);

private:
    friend class Reservation;

    void settle(std::int64_t reservation);
    void release(std::int64_t reservation);
    std::vector<Entry> entries(const char *condition, std::string_view email);
    Pruned pruneLocked(std::chrono::days usageOlderThan);
    void pruneDaily();
    std::int64_t day() const; // since 1970-01-01
    std::int64_t now() const; // seconds since then

    std::mutex m_mutex;
    Database m_database;
    WallClock m_now;
    std::int64_t m_prunedOn = 0;
};
