#pragma once

#include "base/Appearance.h"

#include <QColor>
#include <QObject>
#include <QString>
#include <QtQmlIntegration/qqmlintegration.h>

#include <optional>

class QJSEngine;
class QQmlEngine;

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

/// Colours, type and measures of every window, following the desktop's look. Lengths and type sizes are
/// in points; a point is one pixel on a screen of ordinary density.
class Theme final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool dark READ isDark NOTIFY changed)
    Q_PROPERTY(bool highContrast READ isHighContrast NOTIFY changed)
    Q_PROPERTY(QColor window READ window NOTIFY changed)
    Q_PROPERTY(QColor surface READ surface NOTIFY changed)
    Q_PROPERTY(QColor text READ text NOTIFY changed)
    Q_PROPERTY(QColor secondary READ secondary NOTIFY changed)
    Q_PROPERTY(QColor tertiary READ tertiary NOTIFY changed)
    Q_PROPERTY(QColor accent READ accent NOTIFY changed)
    Q_PROPERTY(QColor onAccent READ onAccent NOTIFY changed)
    Q_PROPERTY(QColor success READ success NOTIFY changed)
    Q_PROPERTY(QColor warning READ warning NOTIFY changed)
    Q_PROPERTY(QColor error READ error NOTIFY changed)
    Q_PROPERTY(QColor fill READ fill NOTIFY changed)
    Q_PROPERTY(QColor hover READ hover NOTIFY changed)
    Q_PROPERTY(QColor pressed READ pressed NOTIFY changed)
    Q_PROPERTY(QColor separator READ separator NOTIFY changed)
    Q_PROPERTY(QColor outline READ outline NOTIFY changed)
    /// How long a change of look takes, in milliseconds; 0 where motion is unwanted.
    Q_PROPERTY(int motion READ motion NOTIFY changed)
    Q_PROPERTY(bool reducedMotion READ isReducedMotion NOTIFY changed)

    Q_PROPERTY(QString monospaced READ monospaced CONSTANT)
    Q_PROPERTY(int titleSize MEMBER s_titleSize CONSTANT)
    Q_PROPERTY(int figureSize MEMBER s_figureSize CONSTANT)
    Q_PROPERTY(int sectionSize MEMBER s_sectionSize CONSTANT)
    Q_PROPERTY(int textSize MEMBER s_textSize CONSTANT)
    Q_PROPERTY(int calloutSize MEMBER s_calloutSize CONSTANT)
    Q_PROPERTY(int captionSize MEMBER s_captionSize CONSTANT)
    Q_PROPERTY(double lineHeight MEMBER s_lineHeight CONSTANT)
    Q_PROPERTY(int screenMargin MEMBER s_screenMargin CONSTANT)
    Q_PROPERTY(int cardPadding MEMBER s_cardPadding CONSTANT)
    Q_PROPERTY(int tilePadding MEMBER s_tilePadding CONSTANT)
    Q_PROPERTY(int rowSpacing MEMBER s_rowSpacing CONSTANT)
    Q_PROPERTY(int labelSpacing MEMBER s_labelSpacing CONSTANT)
    Q_PROPERTY(int cardRadius MEMBER s_cardRadius CONSTANT)
    Q_PROPERTY(int fieldRadius MEMBER s_fieldRadius CONSTANT)
    Q_PROPERTY(int buttonRadius MEMBER s_buttonRadius CONSTANT)
    Q_PROPERTY(int controlHeight MEMBER s_controlHeight CONSTANT)
    /// About 80 characters of running text.
    Q_PROPERTY(double readingWidth READ readingWidth CONSTANT)
    Q_PROPERTY(double disabledOpacity MEMBER s_disabledOpacity CONSTANT)

public:
    explicit Theme(Appearance &appearance);

    /// The theme that the engine carries in its dynamic property "theme".
    static Theme *create(QQmlEngine *engine, QJSEngine *);

    bool isDark() const { return m_dark; }
    bool isHighContrast() const { return m_highContrast; }
    bool isReducedMotion() const { return m_reducedMotion; }
    const ThemeColors &colors() const { return m_colors; }
    QColor window() const { return m_colors.window; }
    QColor surface() const { return m_colors.surface; }
    QColor text() const { return m_colors.text; }
    QColor secondary() const { return m_colors.secondary; }
    QColor tertiary() const { return m_colors.tertiary; }
    QColor accent() const { return m_colors.accent; }
    QColor onAccent() const { return m_colors.onAccent; }
    QColor success() const { return m_colors.success; }
    QColor warning() const { return m_colors.warning; }
    QColor error() const { return m_colors.error; }
    QColor fill() const { return m_colors.fill; }
    QColor hover() const { return m_colors.hover; }
    QColor pressed() const { return m_colors.pressed; }
    QColor separator() const { return m_colors.separator; }
    QColor outline() const { return m_colors.outline; }
    int motion() const { return m_reducedMotion ? 0 : 150; }
    QString monospaced() const;
    double readingWidth() const;

Q_SIGNALS:
    void changed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void update();

    static constexpr int s_titleSize = 26;
    static constexpr int s_figureSize = 22;
    static constexpr int s_sectionSize = 15;
    static constexpr int s_textSize = 13;
    static constexpr int s_calloutSize = 12;
    static constexpr int s_captionSize = 11;
    static constexpr double s_lineHeight = 1.35; // of running text
    static constexpr int s_screenMargin = 20;
    static constexpr int s_cardPadding = 16;
    static constexpr int s_tilePadding = 14;
    static constexpr int s_rowSpacing = 12;
    static constexpr int s_labelSpacing = 8;
    static constexpr int s_cardRadius = 10;
    static constexpr int s_fieldRadius = 7;
    static constexpr int s_buttonRadius = 6;
    static constexpr int s_controlHeight = 28;
    static constexpr double s_disabledOpacity = 0.4;

    Appearance &m_appearance;
    Listener m_listener;
    bool m_dark = false;
    bool m_highContrast = false;
    bool m_reducedMotion = false;
    ThemeColors m_colors;
};
