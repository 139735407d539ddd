#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <memory>

class Statement;

/// One connection to an SQLite file. Failures are std::runtime_error.
class Database
{
public:
    explicit Database(const std::filesystem::path &path);

    void execute(const char *sql);
    Statement prepare(const char *sql);

private:
    std::unique_ptr<sqlite3, decltype(&sqlite3_close)> m_handle;
};
