#pragma once

#include <string_view>

/// Numbers, in digits or in English words.
namespace Numbers {

/// Expects a word's key; "7", "3pm", "12.50", "seven" and "hundred" are numbers.
bool isNumber(std::string_view key);

} // namespace Numbers
