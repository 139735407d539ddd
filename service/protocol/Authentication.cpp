#include "service/protocol/Authentication.h"

#include "service/accounts/Accounts.h"
#include "service/accounts/SessionToken.h"

std::string Authentication::tokenOf(const httplib::Request &request)
{
    const std::string header = request.get_header_value("Authorization");
    return std::string(SessionToken::inHeader(header));
}

std::expected<Account, Refusal> Authentication::accountOf(const httplib::Request &request, Accounts &accounts)
{
    const std::string token = tokenOf(request);
    const auto account = token.empty() ? std::nullopt : accounts.find(token);
    if (!account)
        return std::unexpected(Refusal::unauthorized());
    if (account->disabled)
        return std::unexpected(Refusal::accountDisabled());
    return *account;
}
