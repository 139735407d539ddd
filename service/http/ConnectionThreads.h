#pragma once

#include <httplib.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

class OpenConnections;

/// A bounded number of threads, each serving one connection at a time.
///
/// When all are taken, idle connections give way to new ones. When all are busy and the queue is full,
/// accepting pauses.
class ConnectionThreads final : public httplib::TaskQueue
{
public:
    ConnectionThreads(OpenConnections &connections, size_t count);
    ~ConnectionThreads() override;

    void enqueue(std::function<void()> serve) override;
    void shutdown() override;

private:
    void work();

    OpenConnections &m_connections;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_queue;
    size_t m_free = 0;
    bool m_stopping = false;
    std::vector<std::thread> m_threads;
};
