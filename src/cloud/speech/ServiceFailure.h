#pragma once

#include "base/FlowError.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>

/// The hosted service's error body: `{"error": {"code", "message"}, "remainingSeconds"}`, every member
/// optional.
struct AccountErrorBody
{
    std::optional<QString> code;    ///< trimmed and lower-cased
    std::optional<QString> message; ///< as sent
    std::optional<qint64> remainingSeconds;

    /// None when the bytes are not such a body.
    static std::optional<AccountErrorBody> decode(const QByteArray &json);
};

/// What a refusal by the hosted service means: whether to try again, and what the user reads.
namespace ServiceFailure {

/// How long to wait before the one retry; none when the answer is final. `retryAfter` is the
/// "Retry-After" header in seconds, fractions allowed; more than 5 s is not waited for.
std::optional<std::chrono::milliseconds> accountRetryDelay(int status, const std::optional<QString> &code,
                                                           const std::optional<QString> &retryAfter);

/// What follows from an answer that is final.
struct Outcome
{
    FlowError error;
    bool rejectsSession = false; ///< the session is no longer valid; `error` serves where none is stored
};
Outcome accountFailure(int status, const std::optional<AccountErrorBody> &body);

} // namespace ServiceFailure
