#include "program/WindowPlace.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <algorithm>

namespace {

QMargins frameOf(const QWindow &window)
{
    const QMargins known = window.frameMargins();
    return known.isNull() ? WindowPlace::usualFrame : known;
}

} // namespace

QSize WindowPlace::room(const QSize &desk, const QMargins &frame)
{
    return desk.shrunkBy(frame).expandedTo({1, 1});
}

void WindowPlace::fit(QWindow &window, const QSize &least)
{
    const QSize largest = room(window.screen()->availableSize(), frameOf(window));
    window.setMinimumSize(least.boundedTo(largest).expandedTo({1, 1}));
    if (const QSize size = window.size().boundedTo(largest); size != window.size())
        window.resize(size);
}

void WindowPlace::centre(QWindow &window)
{
    const QRect desk = QGuiApplication::primaryScreen()->availableGeometry();
    QRect frame(QPoint(), window.size().grownBy(frameOf(window)));
    frame.moveCenter(desk.center());
    window.setFramePosition({std::max(frame.left(), desk.left()), std::max(frame.top(), desk.top())});
}

bool WindowPlace::isOnSomeScreen(const QWindow &window)
{
    return std::ranges::any_of(QGuiApplication::screens(), [&](const QScreen *screen) {
        return screen->availableGeometry().intersects(window.frameGeometry());
    });
}
