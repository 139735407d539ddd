#include "service/http/ConnectionThreads.h"

#include "service/http/OpenConnections.h"

#include <chrono>

using namespace std::chrono_literals;

namespace {
constexpr size_t maximumQueue = 64;
}

ConnectionThreads::ConnectionThreads(OpenConnections &connections, size_t count) : m_connections(connections)
{
    for (size_t i = 0; i < count; ++i)
        m_threads.emplace_back([this] { work(); });
}

ConnectionThreads::~ConnectionThreads()
{
    shutdown();
}

void ConnectionThreads::enqueue(std::function<void()> serve)
{
    std::unique_lock lock(m_mutex);
    m_queue.push_back(std::move(serve));
    m_changed.notify_all();
    m_connections.setCrowded(m_queue.size() > m_free);
    // Bounded, so that a server told to stop is not kept here by requests in progress.
    m_changed.wait_for(lock, 1s, [this] { return m_queue.size() < maximumQueue; });
}

void ConnectionThreads::shutdown()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
        m_changed.notify_all();
    }
    for (std::thread &thread : m_threads)
        thread.join();
    m_threads.clear();
}

void ConnectionThreads::work()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        ++m_free;
        m_changed.wait(lock, [this] { return m_stopping || !m_queue.empty(); });
        --m_free;
        if (m_queue.empty())
            return;
        const auto serve = std::move(m_queue.front());
        m_queue.pop_front();
        if (m_queue.empty())
            m_connections.setCrowded(false);
        m_changed.notify_all();
        lock.unlock();
        serve();
        lock.lock();
    }
}
