#include "service/accounts/Reservation.h"

#include "service/accounts/Accounts.h"
#include "service/machine/Log.h"

#include <exception>

Reservation::~Reservation()
{
    try {
        if (m_accounts)
            m_accounts->release(m_id);
    } catch (const std::exception &e) {
        Log::failure(e.what()); // it expires
    }
}

void Reservation::settle()
{
    try {
        std::exchange(m_accounts, nullptr)->settle(m_id);
    } catch (const std::exception &e) {
        Log::failure(e.what()); // the work is done and is handed out all the same; it expires
    }
}
