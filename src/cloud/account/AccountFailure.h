#pragma once

#include "cloud/account/AccountError.h"
#include "cloud/account/ServiceErrorBody.h"

/// What a refusal by the account's service means.
namespace AccountFailure {

/// What follows from an answer that is final.
struct Outcome
{
    AccountError error;
    bool rejectsSession = false; ///< whatever session the request carried is no longer valid
};
/// A known code decides before the status. `retryAfter` is that of the answer, in seconds.
Outcome outcome(int status, const ServiceErrorBody &body, std::optional<qint64> retryAfter);

/// "Signed out", with the service's code where it gave one.
AccountError signedOut(const std::optional<QString> &code);

} // namespace AccountFailure
