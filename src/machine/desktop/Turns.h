#pragma once

#include "base/Completion.h"

#include <QCoroTask>

#include <deque>
#include <memory>

/// One coroutine at a time, in the order in which they came, all on one thread.
class Turns
{
public:
    /// Whoever keeps it has the turn; the next one's begins as it is given up.
    using Turn = std::shared_ptr<void>;

    QCoro::Task<Turn> take()
    {
        if (m_taken) {
            Completion<bool> called;
            m_waiting.push_back(&called);
            const Completion<bool>::Awaiter awaiter{&called};
            co_await awaiter;
        }
        m_taken = true;
        const Turn turn(this, [](void *self) { static_cast<Turns *>(self)->pass(); });
        co_return turn;
    }

private:
    void pass()
    {
        m_taken = !m_waiting.empty();
        if (!m_taken)
            return;
        Completion<bool> *next = m_waiting.front();
        m_waiting.pop_front();
        next->complete(true);
    }

    bool m_taken = false;
    std::deque<Completion<bool> *> m_waiting;
};
