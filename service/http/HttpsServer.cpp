#include "service/http/HttpsServer.h"

#include "service/http/ConnectionThreads.h"
#include "service/http/TlsStream.h"
#include "service/machine/Log.h"
#include "service/protocol/Refusal.h"

#include <openssl/err.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <thread>

#include <sys/socket.h>

using namespace std::chrono_literals;

namespace {

constexpr auto idleLimit = 900s; // longer than the longest recording, during which nothing is sent
constexpr auto firstRequestLimit = 10s;
constexpr size_t connectionThreads = 128; // a waiting one costs some 40 KB

TlsStream *connectionOf(const httplib::Request &request)
{
    return request.ssl ? static_cast<TlsStream *>(SSL_get_app_data(request.ssl)) : nullptr;
}

/// The library reads no body with these methods; it would be taken for the next request.
bool carriesUnreadBody(const httplib::Request &request)
{
    const bool readsNone = request.method != "POST" && request.method != "PUT" && request.method != "PATCH";
    return readsNone && (request.has_header("Transfer-Encoding") ||
                         request.get_header_value<uint64_t>("Content-Length") > 0);
}

void logAnswer(const httplib::Request &request, const httplib::Response &response)
{
    const auto now = TlsStream::Clock::now();
    TlsStream *connection = connectionOf(request);
    if (connection)
        connection->answered(response.status);
    const auto duration =
        connection ? now - connection->requestStarted() : TlsStream::Clock::duration::zero();
    Log::answer(request.method, request.path, response.status,
                std::chrono::duration_cast<std::chrono::milliseconds>(duration));
}

void explainRefusal(const httplib::Request &, httplib::Response &response)
{
    response.set_header("Connection", "close");
    if (response.body.empty())
        response.set_content(Refusal::forStatus(response.status).body(), "application/json");
}

void explainException(const httplib::Request &, httplib::Response &response,
                      const std::exception_ptr &exception)
{
    try {
        std::rethrow_exception(exception);
    } catch (const std::exception &e) {
        Log::failure(e.what());
    } catch (...) {
        Log::failure("unknown exception");
    }
    response.status = 500;
    response.set_content(Refusal::internalError().body(), "application/json");
}

std::shared_ptr<SSL_CTX> contextWith(const std::filesystem::path &certificate,
                                     const std::filesystem::path &privateKey)
{
    std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free);
    if (!context || SSL_CTX_use_certificate_chain_file(context.get(), certificate.c_str()) != 1 ||
        SSL_CTX_use_PrivateKey_file(context.get(), privateKey.c_str(), SSL_FILETYPE_PEM) != 1 ||
        SSL_CTX_check_private_key(context.get()) != 1) {
        ERR_clear_error();
        throw std::runtime_error("cannot use the certificate " + certificate.string() +
                                 " with its private key");
    }
    SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
    SSL_CTX_set_options(context.get(), SSL_OP_IGNORE_UNEXPECTED_EOF | SSL_OP_NO_RENEGOTIATION);
    SSL_CTX_set_mode(context.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER |
                                        SSL_MODE_RELEASE_BUFFERS);
    return context;
}

} // namespace

HttpsServer::HttpsServer(const std::filesystem::path &certificate, const std::filesystem::path &privateKey)
    : m_context(contextWith(certificate, privateKey))
{
    new_task_queue = [this] { return new ConnectionThreads(m_connections, connectionThreads); };
    set_keep_alive_timeout(idleLimit.count());
    set_keep_alive_max_count(1'000'000); // only announced; nothing here counts
    set_logger(logAnswer);
    set_error_handler(explainRefusal);
    set_exception_handler(explainException);
}

void HttpsServer::use(const std::filesystem::path &certificate, const std::filesystem::path &privateKey)
{
    auto context = contextWith(certificate, privateKey);
    const std::lock_guard lock(m_contextMutex);
    m_context.swap(context);
}

HttpsServer::~HttpsServer() = default;

int HttpsServer::bind(const std::string &host, int port)
{
    const int bound = port == 0 ? bind_to_any_port(host) : bind_to_port(host, port) ? port : -1;
    if (bound < 0)
        throw std::runtime_error("cannot listen on " + host + " port " + std::to_string(port));
    ::listen(svr_sock_, 64); // the library's own backlog of 5 drops the burst of a starting client
    return bound;
}

void HttpsServer::serve()
{
    m_serving = true;
    if (!m_ending)
        listen_after_bind();
    m_serving = false;
}

void HttpsServer::end()
{
    m_ending = true;
    m_connections.stop();
    while (m_serving && !is_running())
        std::this_thread::sleep_for(1ms); // the library ignores a stop before its loop has begun
    stop();
}

bool HttpsServer::isAbandoned(const httplib::Request &request) const
{
    const TlsStream *connection = connectionOf(request);
    return m_ending || (connection && connection->isAbandoned());
}

bool HttpsServer::process_and_close_socket(socket_t socket)
{
    m_connections.add(socket);
    const auto context = [this] {
        const std::lock_guard lock(m_contextMutex);
        return m_context;
    }();
    TlsStream stream(context.get(), socket);
    bool understood = stream.shakeHands();
    if (understood)
        SSL_set_app_data(stream.handle(), &stream);
    bool last = false;
    auto patience = firstRequestLimit;
    while (understood && !last && !m_ending && stream.awaitRequest(patience)) {
        m_connections.beginWork(socket);
        patience = idleLimit;
        bool bodyIgnored = false;
        understood = process_request(stream, m_ending, last, [&](httplib::Request &request) {
            request.ssl = stream.handle();
            request.ranges.clear(); // answers are small and sent whole
            bodyIgnored = carriesUnreadBody(request);
            const bool isMeasured = request.has_header("Content-Length");
            stream.headIsRead(isMeasured ? std::optional(request.get_header_value<uint64_t>("Content-Length"))
                                         : std::nullopt);
        });
        last = last || bodyIgnored || stream.wasRefused() || !m_connections.beginIdling(socket);
    }
    stream.finish(understood && stream.wasRefused());
    m_connections.remove(socket);
    return understood;
}
