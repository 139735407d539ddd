#include "service/upstream/UpstreamFault.h"

#include "service/protocol/BoundedJson.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>

namespace {

constexpr size_t longestReason = 300; // bytes
constexpr int usualRetrySeconds = 3;
constexpr int longestRetrySeconds = 60;

/// The sentence of an error body, on one line; empty when there is none.
std::string reasonIn(const std::string &body)
{
    const nlohmann::json document = BoundedJson::parsed(body);
    const nlohmann::json none;
    const nlohmann::json error = document.is_object() ? document.value("error", none) : none;
    const nlohmann::json message = error.is_object() ? error.value("message", none) : error;
    if (!message.is_string() || message.get_ref<const std::string &>().size() > longestReason)
        return {};
    std::string reason = message.get<std::string>();
    std::ranges::replace_if(
        reason, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return reason;
}

int secondsIn(const std::string &retryAfter)
{
    int seconds = 0;
    std::from_chars(retryAfter.data(), retryAfter.data() + retryAfter.size(), seconds);
    return seconds > 0 ? std::min(seconds, longestRetrySeconds) : usualRetrySeconds;
}

} // namespace

Refusal UpstreamFault::unreachable()
{
    return {502, "upstream_unreachable", "The service could not reach its speech server. Try again."};
}

Refusal UpstreamFault::tooSlow()
{
    return {504, "upstream_timeout", "The service's speech server took too long to answer. Try again."};
}

Refusal UpstreamFault::notUnderstood()
{
    return {502, "upstream_error", "The service's speech server did not answer as it should. Try again."};
}

Refusal UpstreamFault::answered(int status, const std::string &body, const std::string &retryAfter)
{
    switch (status) {
    case 401:
    case 403:
        return {502, "upstream_auth", "The service's connection to its speech server was rejected."};
    case 413:
        return Refusal::tooLarge("The service's speech server found the request too large.");
    case 429:
        return {429, "upstream_rate_limited", "The service's speech server is busy. Try again in a moment.",
                secondsIn(retryAfter)};
    case 408:
    case 504:
        return tooSlow();
    default:
        break;
    }
    const std::string reason = reasonIn(body);
    if ((status == 400 || status == 422) && !reason.empty())
        return {502, "upstream_error", "The service's speech server refused: " + reason};
    return {502, "upstream_error", "The service's speech server failed. Try again."};
}
