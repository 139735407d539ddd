#include "service/text/Numbers.h"

#include <unordered_set>

bool Numbers::isNumber(std::string_view key)
{
    static const std::unordered_set<std::string_view> names{
        "zero",    "oh",      "one",       "two",      "three",    "four",    "five",     "six",
        "seven",   "eight",   "nine",      "ten",      "eleven",   "twelve",  "thirteen", "fourteen",
        "fifteen", "sixteen", "seventeen", "eighteen", "nineteen", "twenty",  "thirty",   "forty",
        "fifty",   "sixty",   "seventy",   "eighty",   "ninety",   "hundred", "thousand", "million",
        "billion", "double",  "triple",    "point"};
    return key.find_first_of("0123456789") != std::string_view::npos || names.contains(key);
}
