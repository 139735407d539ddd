#pragma once

#include <httplib.h>
#include <openssl/ssl.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

/// One accepted connection, encrypted: the bytes of HTTP requests and answers.
///
/// Every wait ends at a deadline for the whole stage (handshake, head, body, answer), so that a peer
/// that sends a byte now and then holds a thread no longer than one that sends nothing.
class TlsStream final : public httplib::Stream
{
public:
    using Clock = std::chrono::steady_clock;

    /// Takes over the socket and closes it in the end.
    TlsStream(SSL_CTX *context, int socket);
    ~TlsStream() override;
    TlsStream(const TlsStream &) = delete;
    TlsStream &operator=(const TlsStream &) = delete;

    bool shakeHands();
    /// Whether a request begins to arrive before the time is over.
    bool awaitRequest(std::chrono::seconds patience);
    /// The request's head has been read; from here on a body of so many bytes may follow. It has the time
    /// that a slow line needs for it, so that a few bytes never hold a thread as long as a recording may.
    void headIsRead(std::optional<std::uint64_t> bodyBytes);
    /// The request was answered with this HTTP status.
    void answered(int status) { m_refused = status >= 400; }
    /// Whether the last request was refused, at the latest for its head.
    bool wasRefused() const { return m_inHead || m_refused; }
    /// Whether the peer has gone away.
    bool isAbandoned() const;
    /// Says goodbye so that the peer still reads the last answer, although it may not have sent its
    /// whole request: what is on its way is received and dropped, for a few seconds.
    void finish(bool drain);

    SSL *handle() const { return m_ssl.get(); }
    Clock::time_point requestStarted() const { return m_requestStarted; }

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char *bytes, size_t size) override;
    ssize_t write(const char *bytes, size_t size) override;
    void get_remote_ip_and_port(std::string &ip, int &port) const override;
    void get_local_ip_and_port(std::string &ip, int &port) const override;
    socket_t socket() const override { return m_socket; }

private:
    bool waitAfter(int result, Clock::time_point deadline) const;
    bool waitFor(short events, Clock::time_point deadline) const;

    int m_socket;
    std::unique_ptr<SSL, decltype(&SSL_free)> m_ssl;
    bool m_inHead = true;
    size_t m_headBytes = 0;
    bool m_refused = false;
    bool m_broken = false;
    Clock::time_point m_requestStarted;
    Clock::time_point m_deadline;
};
