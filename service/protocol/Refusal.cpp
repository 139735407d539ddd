#include "service/protocol/Refusal.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

Refusal Refusal::badRequest(std::string message)
{
    return {400, "bad_request", std::move(message), {}, {}};
}

Refusal Refusal::tooLarge(std::string message)
{
    return {413, "payload_too_large", std::move(message), {}, {}};
}

Refusal Refusal::unauthorized()
{
    return {401, "unauthorized", "The session is missing or no longer valid.", {}, {}};
}

Refusal Refusal::accountDisabled()
{
    return {403, "account_disabled", "This account is disabled. Ask whoever runs this server.", {}, {}};
}

Refusal Refusal::quotaExceeded()
{
    return {
        429, "quota_exceeded", "Today's dictation allowance is used up. It resets at midnight UTC.", {}, 0};
}

Refusal Refusal::rateLimited()
{
    return tooMany("Too many recordings are being transcribed just now. Try again in a moment.", 3);
}

Refusal Refusal::stopping()
{
    return {503, "stopping", "The service is stopping. Try again.", {}, {}};
}

Refusal Refusal::tooMany(std::string message, std::int64_t waitSeconds)
{
    return {429, "rate_limited", std::move(message), static_cast<int>(waitSeconds), {}};
}

Refusal Refusal::busy(std::chrono::duration<double> tooLong)
{
    constexpr double shortest = 5;
    constexpr double longest = 60; // beyond, some clients would not wait at all
    return {503, "busy", "Too much speech waits to be transcribed. Try again in a minute.",
            static_cast<int>(std::ceil(std::clamp(tooLong.count(), shortest, longest)))};
}

Refusal Refusal::internalError()
{
    return {500, "internal_error", "The service failed. Try again.", {}, {}};
}

Refusal Refusal::forStatus(int status)
{
    switch (status) {
    case 400:
        return badRequest("The request is not valid HTTP, or is incomplete.");
    case 401:
        return unauthorized();
    case 404:
        return {404, "not_found", "There is nothing at this address.", {}, {}};
    case 405:
        return {405, "method_not_allowed", "This address does not take that method.", {}, {}};
    case 413:
        return tooLarge("The request is too large.");
    case 414:
        return {414, "bad_request", "The address is too long.", {}, {}};
    case 500:
        return internalError();
    default:
        return {status,
                status < 500 ? "bad_request" : "internal_error",
                "The request could not be carried out.",
                {},
                {}};
    }
}

std::string Refusal::body() const
{
    nlohmann::json json{{"error", {{"code", code}, {"message", message}}}};
    if (remainingSeconds)
        json["remainingSeconds"] = *remainingSeconds;
    return json.dump();
}
