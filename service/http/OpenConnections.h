#pragma once

#include <chrono>
#include <map>
#include <mutex>

/// The connections that are open now, so that those without a request in work can be ended from
/// outside: when their thread is needed elsewhere, and when the server stops.
class OpenConnections
{
public:
    /// A new connection, whose first request is still to come.
    void add(int socket);
    void remove(int socket);
    /// The connection was answered and waits for its next request; false when it must end instead.
    bool beginIdling(int socket);
    /// A request has begun to arrive; it will be answered.
    void beginWork(int socket);

    /// Whether new connections wait for a thread: then the one that is longest idle, or silent from its
    /// beginning, ends, and so does every one that would begin to idle.
    void setCrowded(bool crowded);
    /// Ends all without a request in work, now and later.
    void stop();

private:
    enum class State { fresh, idle, working };
    struct Connection
    {
        State state = State::fresh;
        std::chrono::steady_clock::time_point since = std::chrono::steady_clock::now();
    };

    void endLongestIdle();

    std::mutex m_mutex;
    std::map<int, Connection> m_connections;
    bool m_crowded = false;
    bool m_stopping = false;
};
