#pragma once

#include <string>
#include <string_view>

/// What a session is called in the list of an account's sessions.
namespace DeviceName {

/// Without blanks at its ends and without what a terminal or a list would obey instead of show, and
/// without bytes that are no UTF-8; its first 64 characters.
std::string shaped(std::string_view text);

} // namespace DeviceName
