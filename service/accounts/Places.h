#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

/// How many requests of one kind may be under way at once, in all and for one account, so that nobody takes
/// them all. May be used from several threads.
class Places
{
public:
    /// The right to be under way; given back when it dies.
    class Place
    {
    public:
        Place(Places &places, std::int64_t account) : m_places(&places), m_account(account) {}
        Place(Place &&other) noexcept
            : m_places(std::exchange(other.m_places, nullptr)),
              m_account(other.m_account)
        {
        }
        Place &operator=(Place &&) = delete;
        ~Place()
        {
            if (m_places)
                m_places->giveBack(m_account);
        }

    private:
        Places *m_places;
        std::int64_t m_account;
    };

    Places(int all, int perAccount) : m_all(all), m_perAccount(perAccount) {}

    /// Nothing when all are taken, or all that this account may take.
    std::optional<Place> take(std::int64_t account);

private:
    void giveBack(std::int64_t account);

    std::mutex m_mutex;
    int m_all; // free
    int m_perAccount;
    std::map<std::int64_t, int> m_taken;
};
