#pragma once

#include <coroutine>
#include <optional>
#include <utility>

/// A value that is delivered later to the one coroutine waiting for it, all on one thread.
template <typename T>
class Completion
{
public:
    /// The waiter goes on within this call; the first value counts.
    void complete(T value)
    {
        if (m_value)
            return;
        m_value = std::move(value);
        if (const auto waiter = std::exchange(m_waiter, nullptr))
            waiter.resume();
    }

    bool isComplete() const { return m_value.has_value(); }

    struct Awaiter
    {
        Completion *completion;
        bool await_ready() const { return completion->m_value.has_value(); }
        void await_suspend(std::coroutine_handle<> waiter) const { completion->m_waiter = waiter; }
        T await_resume() const { return *completion->m_value; }
    };

private:
    std::optional<T> m_value;
    std::coroutine_handle<> m_waiter;
};
