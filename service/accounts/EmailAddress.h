#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The e-mail address that names an account.
namespace EmailAddress {

/// Without blanks at its ends and in lower case, or nothing when it is none: one "@" with something
/// before it and a dotted domain after it, shorter than 255 characters, printable ASCII alone, so that an
/// operator who reads one cannot be deceived by look-alike letters, and nothing that a mail header reads as a
/// second recipient or a comment (the "specials" of RFC 5322, but for dot and at).
std::optional<std::string> normalised(std::string_view text);

} // namespace EmailAddress
