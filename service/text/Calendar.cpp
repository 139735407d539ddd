#include "service/text/Calendar.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<std::string_view, 7> days{"monday", "tuesday",  "wednesday", "thursday",
                                               "friday", "saturday", "sunday"};
constexpr std::array<std::string_view, 12> months{"january",  "february",  "april",   "june",
                                                  "july",     "september", "october", "november",
                                                  "december", "may",       "march",   "august"};

} // namespace

bool Calendar::isDay(std::string_view key)
{
    return std::ranges::find(days, key) != days.end();
}

bool Calendar::isMonth(std::string_view key)
{
    return std::ranges::find(months, key) != months.end();
}

bool Calendar::isUnmistakable(std::string_view key)
{
    return isDay(key) || (isMonth(key) && key != "may" && key != "march" && key != "august");
}
