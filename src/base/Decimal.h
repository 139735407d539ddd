#pragma once

#include <QString>

namespace Decimal {

/// With exactly so many decimals and a point, rounded as C's printf does: to the nearest, of two as near to
/// the one that is even.
QString format(double number, int decimals);

} // namespace Decimal
