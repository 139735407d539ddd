#pragma once

#include <chrono>
#include <string_view>

/// What the service says about its work, on standard error. It is given no token, e-mail address,
/// sound or dictated text, and so can print none.
namespace Log {

void note(std::string_view text);
void failure(std::string_view text);
void answer(std::string_view method, std::string_view path, int status, std::chrono::milliseconds duration);

} // namespace Log
