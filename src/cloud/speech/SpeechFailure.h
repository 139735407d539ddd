#pragma once

#include "base/FlowError.h"
#include "base/Provider.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>

/// What a refusal by Groq or OpenAI means to the user.
namespace ProviderFailure {

/// The sentence for an answer outside 200 to 299, from the provider's error body where it has one:
/// `{"error": {"message", "code"}}`. Status 0 stands for an answer that is not HTTP.
FlowError failure(Provider provider, int status, const QByteArray &body);

/// Whether the message says that the model is gone.
bool mentionsUnknownModel(const QString &message);

/// Whether the message says that a parameter of the request is not accepted.
bool mentionsRejectedParameter(const QString &message);

} // namespace ProviderFailure

struct ServiceRefusal;

/// What a refusal by the hosted service means: whether to try again, and what the user reads.
namespace ServiceFailure {

/// How long to wait before the one retry, 5 s at most; none when the answer is final.
std::optional<std::chrono::milliseconds> accountRetryDelay(const ServiceRefusal &refusal);

/// What follows from an answer that is final.
struct Outcome
{
    FlowError error;
    bool rejectsSession = false; ///< the session is no longer valid; `error` serves where none is stored
};
Outcome accountFailure(const ServiceRefusal &refusal);

} // namespace ServiceFailure
