#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

/// One SQL statement with its parameters, bound from left to right, and its rows.
class Statement
{
public:
    Statement(sqlite3 *database, const char *sql);

    Statement &bind(std::int64_t number);
    Statement &bind(std::string_view text);
    Statement &bindBytes(std::string_view bytes);

    /// Whether there is a next row; its columns can then be read.
    bool step();
    /// Carries a change that returns its rows out to its end; whether there were any.
    bool changesAny();
    std::int64_t number(int column) const { return sqlite3_column_int64(m_handle.get(), column); }
    std::string text(int column) const;

private:
    void check(int result);

    sqlite3 *m_database;
    std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> m_handle;
    int m_bound = 0;
};
