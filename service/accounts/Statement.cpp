#include "service/accounts/Statement.h"

#include <stdexcept>

Statement::Statement(sqlite3 *database, const char *sql)
    : m_database(database),
      m_handle(nullptr, &sqlite3_finalize)
{
    sqlite3_stmt *handle = nullptr;
    check(sqlite3_prepare_v2(database, sql, -1, &handle, nullptr));
    m_handle.reset(handle);
}

Statement &Statement::bind(std::int64_t number)
{
    check(sqlite3_bind_int64(m_handle.get(), ++m_bound, number));
    return *this;
}

Statement &Statement::bind(std::string_view text)
{
    check(sqlite3_bind_text64(m_handle.get(), ++m_bound, text.data(), text.size(), SQLITE_TRANSIENT,
                              SQLITE_UTF8));
    return *this;
}

Statement &Statement::bindBytes(std::string_view bytes)
{
    check(sqlite3_bind_blob64(m_handle.get(), ++m_bound, bytes.data(), bytes.size(), SQLITE_TRANSIENT));
    return *this;
}

bool Statement::step()
{
    const int result = sqlite3_step(m_handle.get());
    if (result == SQLITE_ROW)
        return true;
    check(result == SQLITE_DONE ? SQLITE_OK : result);
    return false;
}

bool Statement::changesAny()
{
    bool any = false;
    while (step())
        any = true;
    return any;
}

std::string Statement::text(int column) const
{
    const auto *bytes = static_cast<const char *>(sqlite3_column_blob(m_handle.get(), column));
    const int size = sqlite3_column_bytes(m_handle.get(), column);
    return bytes ? std::string(bytes, static_cast<size_t>(size)) : std::string();
}

void Statement::check(int result)
{
    if (result != SQLITE_OK)
        throw std::runtime_error(std::string("database: ") + sqlite3_errmsg(m_database));
}
