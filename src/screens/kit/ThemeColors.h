#pragma once

#include <QColor>

#include <optional>

/// The colours of one look. Texts and signs reach a contrast of 4.5 against `window` and `surface`,
/// `tertiary` 4.3, which is why it never says anything alone.
struct ThemeColors
{
    QColor window;
    QColor surface; ///< cards, fields, sheets
    QColor text;
    QColor secondary;
    QColor tertiary;
    QColor accent;
    QColor onAccent; ///< text on the accent
    QColor success;
    QColor warning;
    QColor error;
    QColor fill; ///< the lightest shade, over anything
    QColor hover;
    QColor pressed;
    QColor separator;
    QColor outline; ///< the edge of a field

    bool operator==(const ThemeColors &) const = default;

    /// The desktop's accent is moved towards the text until it can be read on the window.
    static ThemeColors of(bool dark, bool highContrast, const std::optional<QColor> &accent);

    /// The contrast ratio of two opaque colours, 1 to 21 (WCAG 2.1, relative luminance).
    static double contrast(const QColor &one, const QColor &other);
};
