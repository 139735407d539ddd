#include "service/accounts/Places.h"

std::optional<Places::Place> Places::take(std::int64_t account)
{
    const std::lock_guard lock(m_mutex);
    if (m_all == 0)
        return {};
    const auto taken = m_taken.find(account);
    if (taken != m_taken.end() && taken->second >= m_perAccount)
        return {};
    --m_all;
    ++m_taken[account];
    return std::optional<Place>(std::in_place, *this, account);
}

void Places::giveBack(std::int64_t account)
{
    const std::lock_guard lock(m_mutex);
    ++m_all;
    if (--m_taken[account] == 0)
        m_taken.erase(account);
}
