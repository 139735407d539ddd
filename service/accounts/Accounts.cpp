#include "service/accounts/Accounts.h"

#include "service/accounts/DeviceName.h"
#include "service/accounts/SessionToken.h"
#include "service/accounts/Statement.h"
#include "service/accounts/Transaction.h"

#include <utility>

namespace {

constexpr int usualDailyMinutes = 60;

constexpr std::int64_t idleSeconds = std::int64_t{365} * 24 * 3600;
constexpr std::int64_t useResolution = 60; // seconds; not every request is worth a write
constexpr std::int64_t textBytesPerSecond =
    100; // with the vocabulary that goes along, and scripts of 3 bytes
constexpr std::int64_t leastTextBytes = 100'000;
constexpr std::int64_t reservedFor = 1200; // seconds: longer than any request may take

std::chrono::sys_seconds moment(std::int64_t seconds)
{
    return std::chrono::sys_seconds(std::chrono::seconds(seconds));
}

} // namespace

Accounts::Accounts(const std::filesystem::path &database, WallClock now, Schema::Older older)
    : m_database(database),
      m_now(std::move(now))
{
    Schema::ensure(m_database, older);
    pruneDaily();
}

std::string Accounts::openSession(const std::string &email, const std::string &device,
                                  std::optional<int> dailyMinutes)
{
    const std::string token = SessionToken::fresh();
    const std::lock_guard lock(m_mutex);
    Transaction transaction(m_database);
    m_database.prepare("INSERT INTO account(email, daily_seconds) VALUES(?, ?) ON CONFLICT(email) DO NOTHING")
        .bind(email)
        .bind(std::int64_t{usualDailyMinutes} * 60)
        .step();
    if (dailyMinutes) {
        m_database.prepare("UPDATE account SET daily_seconds = ? WHERE email = ?")
            .bind(std::int64_t{*dailyMinutes} * 60)
            .bind(email)
            .step();
    }
    m_database
        .prepare("INSERT INTO session(token_hash, account, device, created_at, last_used_at)"
                 " SELECT ?, id, ?, ?, ? FROM account WHERE email = ?")
        .bindBytes(SessionToken::hash(token))
        .bind(device)
        .bind(now())
        .bind(now())
        .bind(email)
        .step();
    transaction.commit();
    return token;
}

std::optional<Account> Accounts::find(std::string_view token)
{
    const std::string hash = SessionToken::hash(token);
    const std::lock_guard lock(m_mutex);
    auto query = m_database.prepare(
        "SELECT token_hash, account.id, email, daily_seconds, coalesce(usage.seconds, 0) +"
        " (SELECT coalesce(sum(seconds), 0) FROM reservation WHERE reservation.account = account.id"
        "  AND reservation.day = usage_day.day AND expires_at > ?), last_used_at, disabled"
        " FROM (SELECT ? AS day) AS usage_day, session JOIN account ON account.id = session.account"
        " LEFT JOIN usage ON usage.account = account.id AND usage.day = usage_day.day WHERE token_hash = ?");
    query.bind(now()).bind(day()).bindBytes(hash);
    if (!query.step() || !SessionToken::equalHashes(query.text(0), hash))
        return {};
    const Account account{query.number(1), query.text(2), query.number(3), query.number(4),
                          query.number(6) != 0};
    if (query.number(5) <= now() - useResolution) {
        query.step(); // lets go of the tables
        m_database.prepare("UPDATE session SET last_used_at = ? WHERE token_hash = ?")
            .bind(now())
            .bindBytes(hash)
            .step();
    }
    return account;
}

std::vector<DeviceSession> Accounts::sessions(const Account &account, std::string_view token)
{
    const std::string hash = SessionToken::hash(token);
    const std::lock_guard lock(m_mutex);
    auto query = m_database.prepare("SELECT id, device, created_at, last_used_at, token_hash FROM session"
                                    " WHERE account = ? ORDER BY last_used_at DESC, id DESC");
    query.bind(account.id);
    std::vector<DeviceSession> sessions;
    while (query.step()) {
        // Shaped again: an older program stored names that no list can hold.
        sessions.push_back({query.number(0), DeviceName::shaped(query.text(1)), moment(query.number(2)),
                            moment(query.number(3)), SessionToken::equalHashes(query.text(4), hash)});
    }
    return sessions;
}

bool Accounts::closeSession(const Account &account, std::int64_t id)
{
    const std::lock_guard lock(m_mutex);
    auto change = m_database.prepare("DELETE FROM session WHERE account = ? AND id = ? RETURNING id");
    return change.bind(account.id).bind(id).changesAny();
}

bool Accounts::closeSession(std::string_view token)
{
    const std::lock_guard lock(m_mutex);
    auto change = m_database.prepare("DELETE FROM session WHERE token_hash = ? RETURNING id");
    return change.bindBytes(SessionToken::hash(token)).changesAny();
}

std::optional<Reservation> Accounts::reserve(const Account &account, std::int64_t seconds)
{
    const std::lock_guard lock(m_mutex);
    pruneDaily();
    Transaction transaction(m_database);
    auto query = m_database.prepare(
        "SELECT daily_seconds - coalesce((SELECT seconds FROM usage WHERE account = account.id AND day = ?), "
        "0)"
        " - coalesce((SELECT sum(seconds) FROM reservation WHERE account = account.id AND day = ?"
        " AND expires_at > ?), 0) FROM account WHERE id = ?");
    query.bind(day()).bind(day()).bind(now()).bind(account.id);
    const std::int64_t left = query.step() ? query.number(0) : 0;
    query.step();
    if (left <= 0)
        return {};
    auto insertion = m_database.prepare("INSERT INTO reservation(account, day, seconds, expires_at)"
                                        " VALUES(?, ?, ?, ?) RETURNING id");
    insertion.bind(account.id).bind(day()).bind(seconds).bind(now() + reservedFor).step();
    const std::int64_t id = insertion.number(0);
    insertion.step();
    transaction.commit();
    return std::optional<Reservation>(std::in_place, *this, id, left > seconds ? left - seconds : 0);
}

void Accounts::settle(std::int64_t reservation)
{
    const std::lock_guard lock(m_mutex);
    Transaction transaction(m_database);
    // Never more than the allowance, but what was used before stays used when the allowance shrinks.
    m_database
        .prepare(
            "INSERT INTO usage(account, day, seconds)"
            " SELECT account, day, min(reservation.seconds, daily_seconds) FROM reservation"
            " JOIN account ON account.id = account WHERE reservation.id = ?"
            " ON CONFLICT(account, day) DO UPDATE SET seconds = max(seconds, min(seconds + excluded.seconds,"
            " (SELECT daily_seconds FROM account WHERE id = usage.account)))")
        .bind(reservation)
        .step();
    m_database.prepare("DELETE FROM reservation WHERE id = ?").bind(reservation).step();
    transaction.commit();
}

void Accounts::release(std::int64_t reservation)
{
    const std::lock_guard lock(m_mutex);
    m_database.prepare("DELETE FROM reservation WHERE id = ?").bind(reservation).step();
}

bool Accounts::spendText(const Account &account, std::int64_t bytes)
{
    const std::lock_guard lock(m_mutex);
    const std::int64_t most = leastTextBytes + account.dailySeconds * textBytesPerSecond;
    auto change =
        m_database.prepare("INSERT INTO usage(account, day, seconds, text_bytes) SELECT ?1, ?2, 0, ?3"
                           " WHERE ?3 <= ?4 ON CONFLICT(account, day) DO UPDATE"
                           " SET text_bytes = text_bytes + ?3 WHERE text_bytes + ?3 <= ?4"
                           " RETURNING text_bytes");
    return change.bind(account.id).bind(day()).bind(bytes).bind(most).changesAny();
}

std::vector<Accounts::Entry> Accounts::entries(const char *condition, std::string_view email)
{
    auto query = m_database.prepare(
        (std::string(
             "SELECT account.id, email, daily_seconds, coalesce((SELECT seconds FROM usage"
             " WHERE account = account.id AND day = ?), 0), disabled, count(session.id), max(last_used_at)"
             " FROM account LEFT JOIN session ON session.account = account.id ") +
         condition + " GROUP BY account.id ORDER BY email")
            .c_str());
    query.bind(day());
    if (!email.empty())
        query.bind(email);
    std::vector<Entry> all;
    while (query.step()) {
        const std::int64_t sessions = query.number(5);
        all.push_back(
            {{query.number(0), query.text(1), query.number(2), query.number(3), query.number(4) != 0},
             sessions,
             sessions > 0 ? std::optional(moment(query.number(6))) : std::nullopt});
    }
    return all;
}

std::vector<Accounts::Entry> Accounts::list()
{
    const std::lock_guard lock(m_mutex);
    return entries("", {});
}

std::optional<Accounts::Entry> Accounts::entry(std::string_view email)
{
    const std::lock_guard lock(m_mutex);
    const auto found = entries("WHERE email = ?", email);
    return found.empty() ? std::nullopt : std::optional(found.front());
}

bool Accounts::setDisabled(std::string_view email, bool disabled)
{
    const std::lock_guard lock(m_mutex);
    auto change = m_database.prepare("UPDATE account SET disabled = ? WHERE email = ? RETURNING id");
    return change.bind(std::int64_t{disabled}).bind(email).changesAny();
}

bool Accounts::remove(std::string_view email)
{
    const std::lock_guard lock(m_mutex);
    Transaction transaction(m_database);
    for (const char *table : {"session", "usage", "reservation"}) {
        m_database
            .prepare((std::string("DELETE FROM ") + table +
                      " WHERE account = (SELECT id FROM account WHERE email = ?)")
                         .c_str())
            .bind(email)
            .step();
    }
    for (const char *table : {"sign_in", "code_try", "known_network"})
        m_database.prepare((std::string("DELETE FROM ") + table + " WHERE email = ?").c_str())
            .bind(email)
            .step();
    const bool existed =
        m_database.prepare("DELETE FROM account WHERE email = ? RETURNING id").bind(email).changesAny();
    transaction.commit();
    return existed;
}

bool Accounts::closeSessions(std::string_view email)
{
    const std::lock_guard lock(m_mutex);
    if (entries("WHERE email = ?", email).empty())
        return false;
    m_database.prepare("DELETE FROM session WHERE account = (SELECT id FROM account WHERE email = ?)")
        .bind(email)
        .step();
    return true;
}

std::vector<Accounts::DayUsage> Accounts::usage(std::optional<std::string> email, std::chrono::days last)
{
    const std::lock_guard lock(m_mutex);
    auto query =
        m_database.prepare("SELECT day, email, seconds FROM usage JOIN account ON account.id = account"
                           " WHERE day > ? AND (? = '' OR email = ?) ORDER BY day DESC, email");
    const std::string wanted = email.value_or("");
    query.bind(day() - last.count()).bind(wanted).bind(wanted);
    std::vector<DayUsage> days;
    while (query.step())
        days.push_back(
            {std::chrono::sys_days(std::chrono::days(query.number(0))), query.text(1), query.number(2)});
    return days;
}

Accounts::Pruned Accounts::prune(std::chrono::days usageOlderThan)
{
    const std::lock_guard lock(m_mutex);
    return pruneLocked(usageOlderThan);
}

Accounts::Pruned Accounts::pruneLocked(std::chrono::days usageOlderThan)
{
    Transaction transaction(m_database);
    const auto count = [this](const char *sql, std::int64_t bound) {
        auto deletion = m_database.prepare(sql);
        deletion.bind(bound);
        std::int64_t rows = 0;
        while (deletion.step())
            ++rows;
        return rows;
    };
    const Pruned pruned{
        .sessions = count("DELETE FROM session WHERE last_used_at < ? RETURNING id", now() - idleSeconds),
        .days = count("DELETE FROM usage WHERE day < ? RETURNING day", day() - usageOlderThan.count())};
    count("DELETE FROM known_network WHERE signed_in_at < ? RETURNING email", now() - idleSeconds);
    count("DELETE FROM reservation WHERE expires_at < ? RETURNING id", now() - reservedFor);
    transaction.commit();
    return pruned;
}

void Accounts::pruneDaily()
{
    if (std::exchange(m_prunedOn, day()) != day())
        pruneLocked(usageKept);
}

std::int64_t Accounts::day() const
{
    return std::chrono::floor<std::chrono::days>(m_now()).time_since_epoch().count();
}

std::int64_t Accounts::now() const
{
    return m_now().time_since_epoch().count();
}
