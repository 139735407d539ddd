#pragma once

#include "service/accounts/Accounts.h"
#include "service/dictation/Cleanups.h"
#include "service/dictation/Transcriptions.h"
#include "service/http/HttpsServer.h"

#include <optional>

/// The addresses for speech and text: who may use them, what they do, how they refuse. Every address that
/// it does not know is refused, so other routes are set before it.
class Service
{
public:
    Service(HttpsServer &server, Accounts &accounts, Transcriptions &transcriptions, Cleanups &cleanups);
    Service(const Service &) = delete;
    Service &operator=(const Service &) = delete;

private:
    using Request = httplib::Request;
    using Response = httplib::Response;

    void transcribe(const Request &request, Response &response, const httplib::ContentReader &body);
    void cleanup(const Request &request, Response &response, const httplib::ContentReader &body);
    void models(const Request &request, Response &response);

    /// The account that the request's session belongs to; refuses otherwise.
    std::optional<Account> authenticated(const Request &request, Response &response);

    HttpsServer &m_server;
    Accounts &m_accounts;
    Transcriptions &m_transcriptions;
    Cleanups &m_cleanups;
};
