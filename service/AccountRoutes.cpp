#include "service/AccountRoutes.h"

#include "service/accounts/DeviceName.h"
#include "service/accounts/EmailAddress.h"
#include "service/accounts/SignInCode.h"
#include "service/http/ClientNetwork.h"
#include "service/machine/WallClock.h"
#include "service/protocol/Authentication.h"
#include "service/protocol/TextBody.h"
#include "service/text/Utf8.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <utility>

using nlohmann::json;

namespace {

constexpr size_t maximumBody = 16384; // bytes; an ordinary one has about a hundred
constexpr auto plan = "self-hosted";

Refusal refusalFor(const SignIns::Failure &failure)
{
    switch (failure.kind) {
    case SignIns::Failure::Kind::wrongCode:
        return {400, "invalid_code", "That code is not right. Check it and try again."};
    case SignIns::Failure::Kind::noCode:
        return {400, "code_expired", "That code has expired. Ask for a new one."};
    case SignIns::Failure::Kind::tooMany:
        break;
    }
    return Refusal::tooMany("Too many requests just now. Try again in a moment.", failure.wait.count());
}

const Refusal signUpsClosed{403, "signups_closed", "This server takes no new accounts."};

const Refusal codeNotSent{503, "code_not_sent",
                          "The sign-in code could not be sent. Ask whoever runs this server."};

std::expected<std::string, Refusal> emailIn(const TextMembers &members)
{
    if (!members.has("email"))
        return std::unexpected(Refusal::badRequest("The request has no email."));
    auto email = EmailAddress::normalised(members["email"]);
    if (!email)
        return std::unexpected(Refusal{400, "invalid_email", "That does not look like an email address."});
    return std::move(*email);
}

json described(const DeviceSession &session)
{
    return {{"id", std::to_string(session.id)},
            {"device", session.device},
            {"createdAt", Timestamp::of(session.createdAt)},
            {"lastUsedAt", Timestamp::of(session.lastUsedAt)},
            {"current", session.current}};
}

} // namespace

AccountRoutes::AccountRoutes(HttpsServer &server, Accounts &accounts, SignIns &signIns, SignUps signUps,
                             ShowCode showCode)
    : m_server(server),
      m_accounts(accounts),
      m_signIns(signIns),
      m_signUps(signUps),
      m_showCode(std::move(showCode))
{
    post("/v1/auth/request-code", &AccountRoutes::requestCode);
    post("/v1/auth/verify", &AccountRoutes::verify);
    get("/v1/me", &AccountRoutes::me);
    post("/v1/auth/logout", &AccountRoutes::logout);
    get("/v1/auth/sessions", &AccountRoutes::sessions);
    post("/v1/auth/sessions/revoke", &AccountRoutes::revoke);
}

void AccountRoutes::get(const char *path, Reply::Outcome (AccountRoutes::*respond)(const Request &))
{
    m_server.Get(path, [this, respond](const Request &request, httplib::Response &response) {
        Reply::give(response, (this->*respond)(request));
    });
    Reply::allowOnly(m_server, path, "GET");
}

void AccountRoutes::post(const char *path,
                         Reply::Outcome (AccountRoutes::*respond)(const Request &, const std::string &body))
{
    m_server.Post(path, [this, respond](const Request &request, httplib::Response &response,
                                        const httplib::ContentReader &reader) {
        const auto body = TextBody::read(request, reader, maximumBody);
        Reply::give(response,
                    body ? (this->*respond)(request, *body) : Reply::Outcome(std::unexpected(body.error())));
    });
    Reply::allowOnly(m_server, path, "POST");
}

Reply::Outcome AccountRoutes::requestCode(const Request &request, const std::string &body)
{
    const auto members = TextMembers::in(body, {"email", "device"});
    if (!members)
        return std::unexpected(members.error());
    const auto email = emailIn(*members);
    if (!email)
        return std::unexpected(email.error());
    const auto code = m_signIns.issue(*email, ClientNetwork::of(request.remote_addr));
    if (!code)
        return std::unexpected(refusalFor(code.error()));
    if (const auto refusal =
            signInRefusal(*email)) // only now: the limits also hold for asking who has an account
        return std::unexpected(*refusal);
    switch (m_showCode(*code, *email, DeviceName::shaped((*members)["device"]))) {
    case Mailer::Outcome::refused:
        return std::unexpected(Refusal{400, "invalid_email", "No mail can be sent to that address."});
    case Mailer::Outcome::failed:
        return std::unexpected(codeNotSent);
    case Mailer::Outcome::sent:
        break;
    }
    return json{{"expiresInSeconds", std::chrono::seconds(SignIns::lifetime).count()}};
}

Reply::Outcome AccountRoutes::verify(const Request &request, const std::string &body)
{
    const auto members = TextMembers::in(body, {"email", "code", "device"});
    if (!members)
        return std::unexpected(members.error());
    const auto email = emailIn(*members);
    if (!email)
        return std::unexpected(email.error());
    if (!members->has("code"))
        return std::unexpected(Refusal::badRequest("The request has no code."));
    const std::string code(Utf8::trimmed((*members)["code"]));
    if (!SignInCode::isWellFormed(code))
        return std::unexpected(refusalFor({SignIns::Failure::Kind::wrongCode}));
    const auto used = m_signIns.redeem(*email, code, ClientNetwork::of(request.remote_addr));
    if (!used)
        return std::unexpected(refusalFor(used.error()));
    if (const auto refusal = signInRefusal(*email))
        return std::unexpected(*refusal);
    const std::string token = m_accounts.openSession(*email, DeviceName::shaped((*members)["device"]), {});
    const auto account = m_accounts.find(token);
    if (!account)
        return std::unexpected(Refusal::internalError());
    return json{
        {"token", token},
        {"user", {{"email", account->email}, {"plan", plan}, {"dailyMinutes", account->dailySeconds / 60}}}};
}

Reply::Outcome AccountRoutes::me(const Request &request)
{
    const auto account = Authentication::accountOf(request, m_accounts);
    if (!account)
        return std::unexpected(account.error());
    return json{{"email", account->email},
                {"plan", plan},
                {"status", "active"},
                {"dailyMinutes", account->dailySeconds / 60},
                {"usedTodaySeconds", account->usedSeconds},
                {"remainingSeconds", account->remainingSeconds()}};
}

Reply::Outcome AccountRoutes::sessions(const Request &request)
{
    const auto account = Authentication::accountOf(request, m_accounts);
    if (!account)
        return std::unexpected(account.error());
    json list = json::array();
    for (const DeviceSession &session : m_accounts.sessions(*account, Authentication::tokenOf(request)))
        list.push_back(described(session));
    return json{{"sessions", list}};
}

Reply::Outcome AccountRoutes::logout(const Request &request, const std::string & /*body*/)
{
    if (!m_accounts.closeSession(Authentication::tokenOf(request)))
        return std::unexpected(Refusal::unauthorized());
    return json::object();
}

Reply::Outcome AccountRoutes::revoke(const Request &request, const std::string &body)
{
    const auto account = Authentication::accountOf(request, m_accounts);
    if (!account)
        return std::unexpected(account.error());
    const auto members = TextMembers::in(body, {"id"});
    if (!members)
        return std::unexpected(members.error());
    if (!members->has("id"))
        return std::unexpected(Refusal::badRequest("The request has no id."));
    const std::string text = (*members)["id"];
    std::int64_t id = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    if (!isNumber || !m_accounts.closeSession(*account, id))
        return std::unexpected(Refusal{404, "not_found", "That device is not signed in any more."});
    return json::object();
}

std::optional<Refusal> AccountRoutes::signInRefusal(const std::string &email)
{
    const auto entry = m_accounts.entry(email);
    if (entry && entry->account.disabled)
        return Refusal::accountDisabled();
    return m_signUps == SignUps::closed && !entry ? std::optional(signUpsClosed) : std::nullopt;
}
