#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string_view>

/// JSON that came from outside.
namespace BoundedJson {

/// The document; a discarded value when it is not JSON in UTF-8 or is nested deeper than any message of
/// ours, which is found while reading and so costs neither stack nor memory.
nlohmann::json parsed(std::string_view text);

} // namespace BoundedJson
