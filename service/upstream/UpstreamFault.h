#pragma once

#include "service/protocol/Refusal.h"

#include <string>

/// What our client is told when the upstream server fails. The upstream's own words are passed on where
/// they concern the client's request, and never where they concern our key.
namespace UpstreamFault {

Refusal unreachable();
Refusal tooSlow();
/// It answered 200, but not in the agreed form, or with half a text.
Refusal notUnderstood();
/// It answered with a status other than 200; `retryAfter` is the header of that name.
Refusal answered(int status, const std::string &body, const std::string &retryAfter);

} // namespace UpstreamFault
