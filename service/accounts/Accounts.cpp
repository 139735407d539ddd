#include "service/accounts/Accounts.h"

#include "service/accounts/Schema.h"
#include "service/accounts/SessionToken.h"
#include "service/accounts/Statement.h"
#include "service/accounts/Transaction.h"

#include <utility>

namespace {

constexpr int usualDailyMinutes = 60;

constexpr std::int64_t idleSeconds = std::int64_t{365} * 24 * 3600;
constexpr std::int64_t useResolution = 60; // seconds; not every request is worth a write

std::chrono::sys_seconds moment(std::int64_t seconds)
{
    return std::chrono::sys_seconds(std::chrono::seconds(seconds));
}

} // namespace

Accounts::Accounts(const std::filesystem::path &database, WallClock now)
    : m_database(database),
      m_now(std::move(now))
{
    Schema::ensure(m_database);
    m_database.prepare("DELETE FROM session WHERE last_used_at < ?").bind(this->now() - idleSeconds).step();
}

bool Accounts::has(std::string_view email)
{
    const std::lock_guard lock(m_mutex);
    return m_database.prepare("SELECT 1 FROM account WHERE email = ?").bind(email).step();
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
        "SELECT token_hash, account.id, email, daily_seconds, coalesce(usage.seconds, 0), last_used_at"
        " FROM session JOIN account ON account.id = session.account"
        " LEFT JOIN usage ON usage.account = account.id AND usage.day = ? WHERE token_hash = ?");
    query.bind(day()).bindBytes(hash);
    if (!query.step() || !SessionToken::equalHashes(query.text(0), hash))
        return {};
    const Account account{query.number(1), query.text(2), query.number(3), query.number(4)};
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
        sessions.push_back({query.number(0), query.text(1), moment(query.number(2)), moment(query.number(3)),
                            SessionToken::equalHashes(query.text(4), hash)});
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

std::optional<std::int64_t> Accounts::charge(const Account &account, std::int64_t seconds)
{
    const std::lock_guard lock(m_mutex);
    auto change = m_database.prepare(
        "INSERT INTO usage(account, day, seconds) SELECT id, ?, min(?, daily_seconds) FROM account"
        " WHERE id = ? AND daily_seconds > 0 ON CONFLICT(account, day) DO UPDATE"
        " SET seconds = seconds + excluded.seconds"
        " WHERE seconds < (SELECT daily_seconds FROM account WHERE id = usage.account)"
        " RETURNING (SELECT daily_seconds FROM account WHERE id = usage.account) - seconds");
    change.bind(day()).bind(seconds).bind(account.id);
    if (!change.step())
        return {};
    const std::int64_t remaining = change.number(0);
    change.step();
    return remaining > 0 ? remaining : 0;
}

void Accounts::refund(const Account &account, std::int64_t seconds)
{
    const std::lock_guard lock(m_mutex);
    m_database.prepare("UPDATE usage SET seconds = max(0, seconds - ?) WHERE account = ? AND day = ?")
        .bind(seconds)
        .bind(account.id)
        .bind(day())
        .step();
}

std::int64_t Accounts::day() const
{
    return std::chrono::floor<std::chrono::days>(m_now()).time_since_epoch().count();
}

std::int64_t Accounts::now() const
{
    return m_now().time_since_epoch().count();
}
