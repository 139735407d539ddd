#pragma once

class Database;

/// Changes that happen together or, unless committed, not at all.
class Transaction
{
public:
    /// Waits for other writers.
    explicit Transaction(Database &database);
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    void commit();

private:
    Database &m_database;
    bool m_open = true;
};
