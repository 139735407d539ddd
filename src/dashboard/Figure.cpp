#include "dashboard/Figure.h"

#include <array>
#include <charconv>

QString Figure::decimal(double number, int decimals)
{
    // Neither Qt, which rounds halves up, nor printf, whose decimal point is the user's.
    std::array<char, 64> digits{};
    const auto end =
        std::to_chars(digits.begin(), digits.end(), number, std::chars_format::fixed, decimals).ptr;
    return QString::fromLatin1(digits.data(), end - digits.data());
}

QVariantList Figure::list(const QList<Figure> &figures)
{
    QVariantList list;
    for (const Figure &figure : figures)
        list.append(QVariant::fromValue(figure));
    return list;
}
