#pragma once

#include <QColor>
#include <QImage>
#include <QString>

/// The symbols in resources/icons, drawn in one colour.
///
/// In a symbol's file black is drawn and white is cut out of what lies below it, so the file looks the
/// same in any viewer.
namespace IconImage {

/// The symbol on a square of this many device pixels; a null image when there is no such symbol.
QImage render(const QString &symbol, int pixels, const QColor &color);

} // namespace IconImage
