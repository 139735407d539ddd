#pragma once

#include <cstdint>
#include <utility>

class Accounts;

/// Seconds of one day's allowance, held for work under way. Whoever drops it unsettled gives them back, and
/// one whose process dies is given back when it expires.
class Reservation
{
public:
    Reservation(Accounts &accounts, std::int64_t id, std::int64_t remainingSeconds)
        : m_accounts(&accounts),
          m_id(id),
          m_remainingSeconds(remainingSeconds)
    {
    }
    Reservation(Reservation &&other) noexcept
        : m_accounts(std::exchange(other.m_accounts, nullptr)),
          m_id(other.m_id),
          m_remainingSeconds(other.m_remainingSeconds)
    {
    }
    Reservation &operator=(Reservation &&) = delete;
    ~Reservation();

    /// What is left of the day's allowance once this is settled.
    std::int64_t remainingSeconds() const { return m_remainingSeconds; }

    /// The work is done: the seconds are used, on the day on which they were reserved.
    void settle();

private:
    Accounts *m_accounts; // none once it is settled
    std::int64_t m_id;
    std::int64_t m_remainingSeconds;
};
