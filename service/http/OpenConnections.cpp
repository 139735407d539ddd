#include "service/http/OpenConnections.h"

#include <algorithm>

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

bool OpenConnections::beginWaiting(int socket)
{
    const std::lock_guard lock(m_mutex);
    m_connections[socket] = {};
    return !m_stopping;
}

void OpenConnections::endWaiting(int socket)
{
    const std::lock_guard lock(m_mutex);
    m_connections[socket].waiting = false;
}

void OpenConnections::endLongestWaiting()
{
    const std::lock_guard lock(m_mutex);
    const auto earlier = [](const auto &a, const auto &b) {
        return std::pair(!a.second.waiting, a.second.since) < std::pair(!b.second.waiting, b.second.since);
    };
    const auto longest = std::ranges::min_element(m_connections, earlier);
    if (longest == m_connections.end() || !longest->second.waiting)
        return;
    longest->second.waiting = false; // its thread is about to find out
    ::shutdown(longest->first, SHUT_RD);
}

void OpenConnections::endAllWaiting()
{
    const std::lock_guard lock(m_mutex);
    m_stopping = true;
    for (const auto &[socket, connection] : m_connections) {
        if (connection.waiting)
            ::shutdown(socket, SHUT_RD);
    }
}
