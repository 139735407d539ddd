#pragma once

#include <string>
#include <string_view>

/// What a chat model is told when it is to edit a dictated text.
namespace CleanupPrompt {

/// The application's own prompt, with the user's terms at its end when there are any.
std::string with(std::string_view vocabulary);

} // namespace CleanupPrompt
