#pragma once

#include "service/accounts/Accounts.h"
#include "service/accounts/Places.h"
#include "service/http/HttpsServer.h"
#include "service/http/Reply.h"
#include "service/labs/Assistants.h"

#include <string>

struct LabsRequest;

/// The addresses for asking an assistant: which ones there are, and the question itself. An answer costs
/// 30 seconds of the account's daily allowance; a failure costs nothing.
class LabsRoutes
{
public:
    LabsRoutes(HttpsServer &server, Accounts &accounts, const Assistants &assistants);
    LabsRoutes(const LabsRoutes &) = delete;
    LabsRoutes &operator=(const LabsRoutes &) = delete;

private:
    Reply::Outcome providers(const httplib::Request &request);
    Reply::Outcome answer(const httplib::Request &request, const std::string &body);

    Reply::Outcome asked(const UpstreamClient &assistant, const LabsRequest &question,
                         const httplib::Request &request) const;

    HttpsServer &m_server;
    Accounts &m_accounts;
    const Assistants &m_assistants;
    Places m_places; // for questions under way
};
