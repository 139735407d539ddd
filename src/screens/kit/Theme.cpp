#include "screens/kit/Theme.h"

#include <QEvent>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPalette>
#include <QQmlEngine>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double readable = 4.5;

double luminance(const QColor &color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor mixed(const QColor &color, const QColor &other, double share)
{
    return QColor::fromRgbF(static_cast<float>(color.redF() + (other.redF() - color.redF()) * share),
                            static_cast<float>(color.greenF() + (other.greenF() - color.greenF()) * share),
                            static_cast<float>(color.blueF() + (other.blueF() - color.blueF()) * share));
}

QColor veil(bool dark, double opacity)
{
    QColor color(dark ? Qt::white : Qt::black);
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

QColor readableAccent(const QColor &wanted, const ThemeColors &colors)
{
    for (int step = 0; step <= 20; ++step) {
        const QColor accent = mixed(wanted, colors.text, step / 20.0);
        if (ThemeColors::contrast(accent, colors.window) >= readable &&
            ThemeColors::contrast(accent, colors.surface) >= readable)
            return accent;
    }
    return colors.text;
}

} // namespace

double ThemeColors::contrast(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

ThemeColors ThemeColors::of(bool dark, bool highContrast, const std::optional<QColor> &accent)
{
    ThemeColors colors;
    colors.window = QColor::fromRgb(dark ? 0x1C1C1E : 0xF5F5F7);
    colors.surface = QColor::fromRgb(dark ? 0x2A2A2D : 0xFFFFFF);
    colors.text = QColor::fromRgb(dark ? 0xF2F2F7 : 0x1D1D1F);
    colors.secondary = QColor::fromRgb(dark ? 0xAEAEB4 : 0x5B5B61);
    colors.tertiary = QColor::fromRgb(dark ? 0x8E8E93 : 0x74747A);
    colors.success = QColor::fromRgb(dark ? 0x4CC26B : 0x1A7F37);
    colors.warning = QColor::fromRgb(dark ? 0xF5B942 : 0x9A5B00);
    colors.error = QColor::fromRgb(dark ? 0xFF7A85 : 0xB3261E);
    colors.fill = veil(dark, dark ? 0.07 : 0.05);
    colors.hover = veil(dark, dark ? 0.06 : 0.04);
    colors.pressed = veil(dark, dark ? 0.16 : 0.12);
    colors.separator = veil(dark, dark ? 0.12 : 0.10);
    colors.outline = veil(dark, dark ? 0.22 : 0.20);
    if (highContrast) {
        colors.window = dark ? Qt::black : Qt::white;
        colors.surface = dark ? QColor::fromRgb(0x121212) : QColor(Qt::white);
        colors.text = dark ? Qt::white : Qt::black;
        colors.secondary = mixed(colors.text, colors.window, 0.15);
        colors.tertiary = mixed(colors.text, colors.window, 0.25);
        colors.separator = veil(dark, 0.5);
        colors.outline = veil(dark, 0.8);
    }
    colors.accent = readableAccent(accent.value_or(QColor::fromRgb(dark ? 0x5AA9FF : 0x0060DF)), colors);
    colors.onAccent =
        contrast(colors.accent, Qt::white) >= readable ? QColor(Qt::white) : QColor::fromRgb(0x101012);
    return colors;
}

Theme::Theme(Appearance &appearance)
    : m_appearance(appearance),
      m_listener(std::make_shared<const std::function<void()>>([this] { update(); }))
{
    m_appearance.follow(m_listener);
    qGuiApp->installEventFilter(this);
    update();
}

Theme *Theme::create(QQmlEngine *engine, QJSEngine *)
{
    auto *theme = engine->property("theme").value<Theme *>();
    QJSEngine::setObjectOwnership(theme, QJSEngine::CppOwnership);
    return theme;
}

double Theme::readingWidth() const
{
    static const double width = [] {
        const QString sample = u"The quick brown fox jumps over the lazy dog."_s;
        QFont font;
        font.setPixelSize(s_textSize);
        return 80 * QFontMetricsF(font).horizontalAdvance(sample) / static_cast<double>(sample.size());
    }();
    return width;
}

QString Theme::monospaced() const
{
    return QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
}

bool Theme::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qGuiApp && event->type() == QEvent::ApplicationPaletteChange)
        update();
    return false;
}

void Theme::update()
{
    const AppearanceWishes wishes = m_appearance.wishes();
    const QPalette palette = QGuiApplication::palette();
    const bool paletteIsDark =
        palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
    const bool dark =
        wishes.scheme == ColorScheme::noPreference ? paletteIsDark : wishes.scheme == ColorScheme::dark;
    std::optional<QColor> accent;
    if (wishes.accent)
        accent = QColor::fromRgb(*wishes.accent);
    const ThemeColors colors = ThemeColors::of(dark, wishes.highContrast, accent);
    if (colors == m_colors && m_reducedMotion == wishes.reducedMotion)
        return;
    m_dark = dark;
    m_highContrast = wishes.highContrast;
    m_reducedMotion = wishes.reducedMotion;
    m_colors = colors;
    Q_EMIT changed();
}
