#include "base/Decimal.h"

#include <array>
#include <charconv>

QString Decimal::format(double number, int decimals)
{
    // Neither Qt, which rounds halves up, nor printf, whose decimal point is the user's.
    std::array<char, 64> digits{};
    const auto end =
        std::to_chars(digits.begin(), digits.end(), number, std::chars_format::fixed, decimals).ptr;
    return QString::fromLatin1(digits.data(), end - digits.data());
}
