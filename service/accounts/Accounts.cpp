#include "service/accounts/Accounts.h"

#include "service/accounts/SessionToken.h"
#include "service/accounts/Statement.h"

#include <utility>

namespace {

constexpr int usualDailyMinutes = 60;

constexpr auto schema = R"sql(
PRAGMA journal_mode=WAL;
CREATE TABLE IF NOT EXISTS account(
    id INTEGER PRIMARY KEY, email TEXT NOT NULL UNIQUE, daily_seconds INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS session(
    token_hash BLOB PRIMARY KEY, account INTEGER NOT NULL REFERENCES account(id),
    device TEXT NOT NULL, created_at TEXT NOT NULL DEFAULT (strftime('%Y-%m-%dT%H:%M:%SZ', 'now')));
CREATE TABLE IF NOT EXISTS usage(
    account INTEGER NOT NULL REFERENCES account(id), day INTEGER NOT NULL, seconds INTEGER NOT NULL,
    PRIMARY KEY(account, day));
)sql";

} // namespace

Accounts::Accounts(const std::filesystem::path &database, Today today)
    : m_database(database),
      m_today(std::move(today))
{
    m_database.execute(schema);
}

std::string Accounts::openSession(const std::string &email, const std::string &device,
                                  std::optional<int> dailyMinutes)
{
    const std::string token = SessionToken::fresh();
    const std::lock_guard lock(m_mutex);
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
        .prepare(
            "INSERT INTO session(token_hash, account, device) SELECT ?, id, ? FROM account WHERE email = ?")
        .bindBytes(SessionToken::hash(token))
        .bind(device)
        .bind(email)
        .step();
    return token;
}

std::optional<Account> Accounts::find(std::string_view token)
{
    const std::string hash = SessionToken::hash(token);
    const std::lock_guard lock(m_mutex);
    auto query = m_database.prepare(
        "SELECT token_hash, account.id, email, daily_seconds, coalesce(usage.seconds, 0) FROM session"
        " JOIN account ON account.id = session.account"
        " LEFT JOIN usage ON usage.account = account.id AND usage.day = ? WHERE token_hash = ?");
    query.bind(day()).bindBytes(hash);
    if (!query.step() || !SessionToken::equalHashes(query.text(0), hash))
        return {};
    return Account{query.number(1), query.text(2), query.number(3), query.number(4)};
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

std::chrono::sys_days Accounts::utcToday()
{
    return std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
}

std::int64_t Accounts::day() const
{
    return m_today().time_since_epoch().count();
}
