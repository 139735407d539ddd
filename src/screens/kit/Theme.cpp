#include "screens/kit/Theme.h"

#include <QEvent>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPalette>
#include <QQmlEngine>

using namespace Qt::StringLiterals;

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
