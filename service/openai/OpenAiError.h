#pragma once

#include "service/protocol/Refusal.h"

#include <string>

/// Refusals as clients of the OpenAI-compatible interface read them: `{"error": {"message", "type",
/// "param", "code"}}`.
namespace OpenAiError {

std::string body(const Refusal &refusal);

/// There is no such model; `available` names those that there are.
Refusal unknownModel(const std::string &model, const std::string &available);
/// A parameter is missing, or has a value that cannot be honoured.
Refusal badParameter(std::string parameter, std::string message);

} // namespace OpenAiError
