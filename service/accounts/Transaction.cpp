#include "service/accounts/Transaction.h"

#include "service/accounts/Database.h"
#include "service/machine/Log.h"

#include <exception>

Transaction::Transaction(Database &database) : m_database(database)
{
    m_database.execute("BEGIN IMMEDIATE");
}

Transaction::~Transaction()
{
    try {
        if (m_open)
            m_database.execute("ROLLBACK");
    } catch (const std::exception &e) {
        Log::failure(e.what()); // SQLite has already undone it by itself
    }
}

void Transaction::commit()
{
    m_database.execute("COMMIT");
    m_open = false;
}
