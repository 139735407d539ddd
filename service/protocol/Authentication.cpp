#include "service/protocol/Authentication.h"

#include "service/accounts/Accounts.h"
#include "service/accounts/SessionToken.h"
#include "service/http/Reply.h"

std::optional<Account> Authentication::accountOf(const httplib::Request &request, httplib::Response &response,
                                                 Accounts &accounts)
{
    const std::string header = request.get_header_value("Authorization");
    const auto token = SessionToken::inHeader(header);
    auto account = token.empty() ? std::nullopt : accounts.find(token);
    if (!account)
        Reply::refuse(response, Refusal::unauthorized());
    return account;
}
