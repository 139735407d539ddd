#pragma once

#include "service/accounts/Account.h"

#include <httplib.h>

#include <optional>

class Accounts;

/// Who a request comes from.
namespace Authentication {

/// The account that the request's session belongs to; refuses the request otherwise.
std::optional<Account> accountOf(const httplib::Request &request, httplib::Response &response,
                                 Accounts &accounts);

} // namespace Authentication
