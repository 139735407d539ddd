#pragma once

#include <string_view>

/// Days and months by their English names. Expects a word's key.
namespace Calendar {

bool isDay(std::string_view key);
bool isMonth(std::string_view key);
/// Whether the name can be nothing else: "may", "march" and "august" can.
bool isUnmistakable(std::string_view key);

} // namespace Calendar
