#pragma once

#include <string_view>

/// Rules for UTF-8 text.
namespace Utf8 {

/// Whether the bytes are well-formed UTF-8 (RFC 3629).
bool isValid(std::string_view bytes);

/// The text without white space and line breaks at its ends.
std::string_view trimmed(std::string_view text);

/// Whether more of its letters belong to other scripts than to the Latin one. Expects valid UTF-8.
bool isMostlyNotLatin(std::string_view text);

} // namespace Utf8
