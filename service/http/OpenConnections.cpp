#include "service/http/OpenConnections.h"

#include <sys/socket.h>

void OpenConnections::add(int socket)
{
    const std::lock_guard lock(m_mutex);
    m_connections[socket] = {};
    if (m_stopping)
        ::shutdown(socket, SHUT_RD);
}

void OpenConnections::remove(int socket)
{
    const std::lock_guard lock(m_mutex);
    m_connections.erase(socket);
}

bool OpenConnections::beginIdling(int socket)
{
    const std::lock_guard lock(m_mutex);
    m_connections[socket] = {State::idle};
    return !m_stopping && !m_crowded;
}

void OpenConnections::beginWork(int socket)
{
    const std::lock_guard lock(m_mutex);
    m_connections[socket].state = State::working;
}

void OpenConnections::setCrowded(bool crowded)
{
    const std::lock_guard lock(m_mutex);
    m_crowded = crowded;
    if (crowded)
        endLongestIdle();
}

void OpenConnections::stop()
{
    const std::lock_guard lock(m_mutex);
    m_stopping = true;
    for (const auto &[socket, connection] : m_connections) {
        if (connection.state != State::working)
            ::shutdown(socket, SHUT_RD);
    }
}

void OpenConnections::endLongestIdle()
{
    constexpr auto patience = std::chrono::seconds(1);
    const auto now = std::chrono::steady_clock::now();
    auto longest = m_connections.end();
    for (auto it = m_connections.begin(); it != m_connections.end(); ++it) {
        const bool longer = longest == m_connections.end() || it->second.since < longest->second.since;
        // One that has said nothing for a while is as good as idle; one that has just come is about to speak.
        const bool isSilent = it->second.state == State::fresh && now - it->second.since > patience;
        if ((it->second.state == State::idle || isSilent) && longer)
            longest = it;
    }
    if (longest == m_connections.end())
        return;
    longest->second.state = State::working; // its thread is about to find out
    ::shutdown(longest->first, SHUT_RD);
}
