#include "service/accounts/Database.h"

#include "service/accounts/Statement.h"

#include <stdexcept>
#include <string>

namespace {

constexpr int patienceMs = 5000; // for another process that writes

sqlite3 *opened(const std::filesystem::path &path)
{
    sqlite3 *handle = nullptr;
    if (sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) ==
        SQLITE_OK)
        return handle;
    const std::string reason = handle ? sqlite3_errmsg(handle) : "out of memory";
    sqlite3_close(handle);
    throw std::runtime_error("cannot open " + path.string() + ": " + reason);
}

} // namespace

Database::Database(const std::filesystem::path &path) : m_handle(opened(path), &sqlite3_close)
{
    sqlite3_busy_timeout(m_handle.get(), patienceMs);
    execute("PRAGMA foreign_keys=ON");
}

void Database::execute(const char *sql)
{
    if (sqlite3_exec(m_handle.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(std::string("database: ") + sqlite3_errmsg(m_handle.get()));
}

Statement Database::prepare(const char *sql)
{
    return {m_handle.get(), sql};
}
