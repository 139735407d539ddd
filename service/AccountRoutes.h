#pragma once

#include "service/accounts/Accounts.h"
#include "service/accounts/SignIns.h"
#include "service/http/HttpsServer.h"
#include "service/http/Reply.h"
#include "service/mail/Mailer.h"

#include <functional>
#include <optional>
#include <string>

/// The addresses for signing in with a code, for the account, and for its sessions.
class AccountRoutes
{
public:
    enum class SignUps { open, closed };

    /// Brings a code to whom it is for: the code, the e-mail address, the device's name.
    using ShowCode = std::function<Mailer::Outcome(const SignIns::Code &code, const std::string &email,
                                                   const std::string &device)>;

    /// With `SignUps::closed` only addresses that have an account may sign in.
    AccountRoutes(HttpsServer &server, Accounts &accounts, SignIns &signIns, SignUps signUps,
                  ShowCode showCode);
    AccountRoutes(const AccountRoutes &) = delete;
    AccountRoutes &operator=(const AccountRoutes &) = delete;

private:
    using Request = httplib::Request;

    void get(const char *path, Reply::Outcome (AccountRoutes::*respond)(const Request &));
    void post(const char *path,
              Reply::Outcome (AccountRoutes::*respond)(const Request &, const std::string &body));

    Reply::Outcome requestCode(const Request &request, const std::string &body);
    Reply::Outcome verify(const Request &request, const std::string &body);
    Reply::Outcome me(const Request &request);
    Reply::Outcome sessions(const Request &request);
    Reply::Outcome logout(const Request &request, const std::string &body);
    Reply::Outcome revoke(const Request &request, const std::string &body);

    /// Why nobody may sign in with the address.
    std::optional<Refusal> signInRefusal(const std::string &email);

    HttpsServer &m_server;
    Accounts &m_accounts;
    SignIns &m_signIns;
    SignUps m_signUps;
    ShowCode m_showCode;
};
