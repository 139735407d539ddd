#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

/// Why a request is not carried out, as the client is told: an HTTP status, a code for the program and
/// one complete sentence for the user.
struct Refusal
{
    int status = 400;
    std::string code;
    std::string message;
    std::optional<int> retryAfterSeconds = {};
    std::optional<std::int64_t> remainingSeconds = {};
    std::string parameter = {}; ///< the part of the request that is at fault, where one is

    static Refusal badRequest(std::string message);
    static Refusal tooLarge(std::string message);
    static Refusal unauthorized();
    static Refusal accountDisabled();
    static Refusal quotaExceeded();
    /// All places are taken; the client may try again by itself.
    static Refusal rateLimited();
    /// The server ends before the work is done.
    static Refusal stopping();
    /// Something was asked for too often; how long to wait is told in seconds.
    static Refusal tooMany(std::string message, std::int64_t waitSeconds);
    /// The work that waits would keep the client longer than it waits itself.
    static Refusal busy(std::chrono::duration<double> tooLong);
    static Refusal internalError();
    /// The refusal for an answer that was given a status and nothing else.
    static Refusal forStatus(int status);

    /// `{"error": {"code", "message"}}`, with "remainingSeconds" beside it when it is known.
    std::string body() const;
};
