#pragma once

#include "service/accounts/Account.h"
#include "service/protocol/Refusal.h"

#include <httplib.h>

#include <expected>
#include <string>

class Accounts;

/// Who a request comes from.
namespace Authentication {

/// The session token that the request shows; empty when it shows none.
std::string tokenOf(const httplib::Request &request);
/// The account that the request's session belongs to.
std::expected<Account, Refusal> accountOf(const httplib::Request &request, Accounts &accounts);

} // namespace Authentication
