#include "service/accounts/Schema.h"

#include "service/accounts/Database.h"
#include "service/accounts/Statement.h"
#include "service/accounts/Transaction.h"

#include <array>
#include <stdexcept>
#include <string>

namespace {

/// Each brings the tables from the version of its place to the next one.
constexpr std::array steps{
    R"sql(
CREATE TABLE IF NOT EXISTS account(
    id INTEGER PRIMARY KEY, email TEXT NOT NULL UNIQUE, daily_seconds INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS session(
    token_hash BLOB PRIMARY KEY, account INTEGER NOT NULL REFERENCES account(id),
    device TEXT NOT NULL, created_at TEXT NOT NULL DEFAULT (strftime('%Y-%m-%dT%H:%M:%SZ', 'now')));
CREATE TABLE IF NOT EXISTS usage(
    account INTEGER NOT NULL REFERENCES account(id), day INTEGER NOT NULL, seconds INTEGER NOT NULL,
    PRIMARY KEY(account, day));
)sql",
    // Sessions get numbers that are never used twice; times are seconds since 1970-01-01.
    R"sql(
ALTER TABLE session RENAME TO old_session;
CREATE TABLE session(
    id INTEGER PRIMARY KEY AUTOINCREMENT, token_hash BLOB NOT NULL UNIQUE,
    account INTEGER NOT NULL REFERENCES account(id), device TEXT NOT NULL,
    created_at INTEGER NOT NULL DEFAULT (unixepoch()),
    last_used_at INTEGER NOT NULL DEFAULT (unixepoch()));
INSERT INTO session(token_hash, account, device, created_at)
    SELECT token_hash, account, device, unixepoch(created_at) FROM old_session ORDER BY rowid;
DROP TABLE old_session;
CREATE INDEX session_account ON session(account);
CREATE TABLE sign_in(
    email TEXT PRIMARY KEY, salt BLOB NOT NULL, code_hash BLOB NOT NULL,
    expires_at INTEGER NOT NULL, tries INTEGER NOT NULL DEFAULT 0);
CREATE TABLE attempt(kind TEXT NOT NULL, subject TEXT NOT NULL, at INTEGER NOT NULL);
CREATE INDEX attempt_subject ON attempt(kind, subject, at);
)sql",
    // Seconds that are held for work under way, the operator's veto, and who signs in from where. Codes of
    // before were hashed without a key and live ten minutes.
    R"sql(
ALTER TABLE account ADD COLUMN disabled INTEGER NOT NULL DEFAULT 0;
ALTER TABLE usage ADD COLUMN text_bytes INTEGER NOT NULL DEFAULT 0;
CREATE TABLE reservation(
    id INTEGER PRIMARY KEY AUTOINCREMENT, account INTEGER NOT NULL REFERENCES account(id),
    day INTEGER NOT NULL, seconds INTEGER NOT NULL, expires_at INTEGER NOT NULL);
CREATE INDEX reservation_account ON reservation(account, day);
DROP TABLE sign_in;
CREATE TABLE sign_in(
    email TEXT NOT NULL, network TEXT NOT NULL, salt BLOB NOT NULL, code_hash BLOB NOT NULL,
    issued_at INTEGER NOT NULL, expires_at INTEGER NOT NULL, PRIMARY KEY(email, network));
CREATE TABLE code_try(email TEXT NOT NULL, code_hash BLOB NOT NULL, network TEXT NOT NULL, at INTEGER NOT NULL);
CREATE INDEX code_try_code ON code_try(email, code_hash, network);
CREATE TABLE known_network(
    email TEXT NOT NULL, network TEXT NOT NULL, signed_in_at INTEGER NOT NULL, PRIMARY KEY(email, network));
)sql"};

} // namespace

void Schema::ensure(Database &database, Older older)
{
    database.execute("PRAGMA journal_mode=WAL");
    Transaction transaction(database);
    auto query = database.prepare("PRAGMA user_version");
    query.step();
    const auto version = static_cast<size_t>(query.number(0));
    query.step();
    if (version > steps.size())
        throw std::runtime_error("the database was written by a newer version of this program");
    if (version == steps.size())
        return;
    // The first version had no number.
    const bool isFresh = !database.prepare("SELECT 1 FROM sqlite_master WHERE name = 'account'").step();
    if (!isFresh && older == Older::isRefused)
        throw std::runtime_error(
            "the database is of an older version of this program; start the server once");
    for (size_t i = version; i < steps.size(); ++i)
        database.execute(steps[i]);
    database.execute(("PRAGMA user_version=" + std::to_string(steps.size())).c_str());
    transaction.commit();
}
