#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Rules for UTF-8 text.
namespace Utf8 {

/// Whether the bytes are well-formed UTF-8 (RFC 3629).
bool isValid(std::string_view bytes);

/// The bytes without those that are not well-formed UTF-8.
std::string valid(std::string_view bytes);

/// The text without white space and line breaks at its ends.
std::string_view trimmed(std::string_view text);

/// Its first code points, `count` at most. This and the following expect valid UTF-8.
std::string_view prefix(std::string_view text, size_t count);

/// How many characters a reader counts in it: a letter with its accents is one (Unicode Standard Annex 29).
size_t characters(std::string_view text);

/// Without control characters, and without those that turn the direction of writing.
std::string withoutControls(std::string_view text);

/// Whether more of its letters belong to other scripts than to the Latin one.
bool isMostlyNotLatin(std::string_view text);

} // namespace Utf8
