#pragma once

#include "service/protocol/Refusal.h"

#include <httplib.h>

#include <expected>
#include <string>

/// A request's body that is not a form.
namespace TextBody {

/// Reads it to its end, or until it is longer than `limit` bytes.
std::expected<std::string, Refusal> read(const httplib::Request &request, const httplib::ContentReader &body,
                                         size_t limit);

} // namespace TextBody
