#pragma once

#include "service/http/OpenConnections.h"

#include <httplib.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>

/// An HTTPS/1.1 server whose number of threads and connections is bounded and which keeps idle
/// connections open for a long recording's time without waking up for them.
///
/// Routes are set with the operations inherited from the library. Every answer of 400 and above ends
/// its connection, since the rest of the request may not have been read; one without a body of its own
/// gets the protocol's error body.
class HttpsServer : public httplib::Server
{
public:
    /// PEM files. Throws std::runtime_error when they cannot be used.
    HttpsServer(const std::filesystem::path &certificate, const std::filesystem::path &privateKey);
    /// New connections see this certificate from now on. Throws like the constructor, and then the old one
    /// stays. From any thread.
    void use(const std::filesystem::path &certificate, const std::filesystem::path &privateKey);
    ~HttpsServer() override;

    /// Binds and returns the port; 0 asks for any free one. Throws when the address is not to be had.
    int bind(const std::string &host, int port);
    /// Serves until `end()`.
    void serve();
    /// Ends accepting and waiting; requests that have arrived are still answered. From any thread.
    void end();

    /// Whether the client that sent the request no longer waits for the answer, or the server ends.
    bool isAbandoned(const httplib::Request &request) const;

private:
    bool process_and_close_socket(socket_t socket) override;

    std::mutex m_contextMutex;
    std::shared_ptr<SSL_CTX> m_context;
    OpenConnections m_connections;
    std::atomic<bool> m_serving = false;
    std::atomic<bool> m_ending = false;
};
