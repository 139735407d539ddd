#pragma once

#include "service/protocol/Refusal.h"

#include <string>

/// Why there is no answer, in words that name the assistant.
namespace LabsFault {

Refusal unavailable(const std::string &assistant);
/// The assistant would not answer this.
Refusal declined(const std::string &assistant);
/// It answered, but with nothing that can be read.
Refusal notUnderstood(const std::string &assistant);
/// A failure of the upstream server.
Refusal named(Refusal fault, const std::string &assistant);

} // namespace LabsFault
