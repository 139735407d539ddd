#pragma once

#include <string>
#include <string_view>

/// What a session is called in the list of an account's sessions.
namespace DeviceName {

/// Without blanks at its ends and without what a terminal or a list would obey instead of show; its
/// first 64 characters. Expects valid UTF-8.
std::string shaped(std::string_view text);

} // namespace DeviceName
