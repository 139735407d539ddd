#pragma once

#include <chrono>
#include <map>
#include <mutex>

/// The connections that are open now, so that those waiting for a next request can be ended from
/// outside: when their thread is needed elsewhere, and when the server stops.
class OpenConnections
{
public:
    void add(int socket);
    void remove(int socket);
    /// The connection waits for a request; false when it must end instead.
    bool beginWaiting(int socket);
    /// A request has begun to arrive; it will be answered.
    void endWaiting(int socket);

    void endLongestWaiting();
    /// Ends all that wait now and all that would wait later.
    void endAllWaiting();

private:
    struct Connection
    {
        bool waiting = true; // a new one waits for its handshake
        std::chrono::steady_clock::time_point since = std::chrono::steady_clock::now();
    };

    std::mutex m_mutex;
    std::map<int, Connection> m_connections;
    bool m_stopping = false;
};
