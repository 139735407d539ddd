#include "service/http/TlsStream.h"

#include <openssl/err.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr auto handshakeLimit = 10s;
constexpr auto headLimit = 10s;
constexpr auto bodyLimit = 120s;
constexpr auto bodyStart = 10s;
constexpr auto unmeasuredLimit = 60s;            // a body in chunks announces no length
constexpr std::uint64_t slowestLine = 16 * 1024; // bytes a second
constexpr auto answerLimit = 30s;
constexpr auto drainLimit = 5s;
constexpr size_t maximumHead = 32768; // bytes; an ordinary head has a few hundred

} // namespace

TlsStream::TlsStream(SSL_CTX *context, int socket)
    : m_socket(socket),
      m_ssl(SSL_new(context), &SSL_free),
      m_requestStarted(Clock::now()),
      m_deadline(m_requestStarted)
{
    ::fcntl(m_socket, F_SETFL, ::fcntl(m_socket, F_GETFL) | O_NONBLOCK);
    const int on = 1;
    ::setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (m_ssl)
        SSL_set_fd(m_ssl.get(), m_socket);
}

TlsStream::~TlsStream()
{
    ::close(m_socket);
}

bool TlsStream::shakeHands()
{
    if (!m_ssl)
        return false;
    const auto deadline = Clock::now() + handshakeLimit;
    for (;;) {
        ERR_clear_error();
        const int result = SSL_accept(m_ssl.get());
        if (result == 1)
            return true;
        if (!waitAfter(result, deadline)) {
            m_broken = true;
            return false;
        }
    }
}

bool TlsStream::awaitRequest(std::chrono::seconds patience)
{
    m_inHead = true;
    m_refused = false;
    m_headBytes = 0;
    if (SSL_pending(m_ssl.get()) == 0 && !waitFor(POLLIN, Clock::now() + patience))
        return false;
    m_requestStarted = Clock::now();
    m_deadline = m_requestStarted + headLimit;
    return true;
}

void TlsStream::headIsRead(std::optional<std::uint64_t> bodyBytes)
{
    m_inHead = false;
    const auto needed = bodyStart + std::chrono::seconds(bodyBytes.value_or(0) / slowestLine);
    m_deadline =
        Clock::now() + (bodyBytes ? std::min<std::chrono::seconds>(needed, bodyLimit) : unmeasuredLimit);
}

bool TlsStream::isAbandoned() const
{
    pollfd state{m_socket, POLLRDHUP, 0};
    return ::poll(&state, 1, 0) > 0 && (state.revents & (POLLRDHUP | POLLHUP | POLLERR));
}

void TlsStream::finish(bool drain)
{
    if (!m_broken) {
        ERR_clear_error();
        SSL_shutdown(m_ssl.get());
    }
    if (!drain)
        return;
    ::shutdown(m_socket, SHUT_WR);
    const auto deadline = Clock::now() + drainLimit;
    std::array<char, 16384> dropped;
    while (waitFor(POLLIN, deadline)) {
        if (::recv(m_socket, dropped.data(), dropped.size(), 0) <= 0)
            return;
    }
}

bool TlsStream::is_readable() const
{
    return SSL_pending(m_ssl.get()) > 0 || waitFor(POLLIN, m_deadline);
}

bool TlsStream::is_writable() const
{
    return !m_broken;
}

ssize_t TlsStream::read(char *bytes, size_t size)
{
    if (m_inHead && m_headBytes >= maximumHead)
        return -1;
    while (!m_broken) {
        ERR_clear_error();
        const int count = SSL_read(m_ssl.get(), bytes, static_cast<int>(std::min<size_t>(size, INT_MAX)));
        if (count > 0) {
            if (m_inHead)
                m_headBytes += static_cast<size_t>(count);
            return count;
        }
        if (SSL_get_error(m_ssl.get(), count) == SSL_ERROR_ZERO_RETURN)
            return 0;
        if (!waitAfter(count, m_deadline))
            return -1;
    }
    return -1;
}

ssize_t TlsStream::write(const char *bytes, size_t size)
{
    const auto deadline = Clock::now() + answerLimit;
    while (!m_broken) {
        ERR_clear_error();
        const int count = SSL_write(m_ssl.get(), bytes, static_cast<int>(std::min<size_t>(size, INT_MAX)));
        if (count > 0)
            return count;
        if (!waitAfter(count, deadline))
            m_broken = true;
    }
    return -1;
}

void TlsStream::get_remote_ip_and_port(std::string &ip, int &port) const
{
    ip.clear();
    port = 0;
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    char text[NI_MAXHOST];
    auto *peer = reinterpret_cast<sockaddr *>(&address);
    if (::getpeername(m_socket, peer, &length) == 0 &&
        ::getnameinfo(peer, length, text, sizeof text, nullptr, 0, NI_NUMERICHOST) == 0)
        ip = text;
}

void TlsStream::get_local_ip_and_port(std::string &ip, int &port) const
{
    ip.clear();
    port = 0;
}

bool TlsStream::waitAfter(int result, Clock::time_point deadline) const
{
    switch (SSL_get_error(m_ssl.get(), result)) {
    case SSL_ERROR_WANT_READ:
        return waitFor(POLLIN, deadline);
    case SSL_ERROR_WANT_WRITE:
        return waitFor(POLLOUT, deadline);
    default:
        return false;
    }
}

bool TlsStream::waitFor(short events, Clock::time_point deadline) const
{
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left <= 0ms)
            return false;
        pollfd state{m_socket, events, 0};
        const int ready = ::poll(&state, 1, static_cast<int>(left.count()));
        if (ready > 0)
            return (state.revents & events) != 0;
        if (ready == 0 || errno != EINTR)
            return false;
    }
}
