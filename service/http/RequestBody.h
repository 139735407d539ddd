#pragma once

#include "service/protocol/Refusal.h"

#include <httplib.h>

#include <cstddef>
#include <expected>
#include <string>

/// The body that a request carries.
namespace RequestBody {

/// Known before anything of the body is read; a body in chunks is counted while it arrives.
bool announcesMoreThan(const httplib::Request &request, size_t limit);

/// Reads the whole body unless it is longer than `limit` bytes, or a form.
std::expected<std::string, Refusal> read(const httplib::Request &request, const httplib::ContentReader &body,
                                         size_t limit);

} // namespace RequestBody
