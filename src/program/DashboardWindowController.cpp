#include "program/DashboardWindowController.h"

#include "base/Activation.h"
#include "program/WindowPlace.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWindow>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool isRegular(const QWindow &window)
{
    const Qt::WindowFlags flags = window.flags();
    const Qt::WindowType type = window.type();
    return window.isVisible() && (type == Qt::Window || type == Qt::Dialog) &&
           !(flags & (Qt::FramelessWindowHint | Qt::BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus |
                      Qt::WindowTransparentForInput));
}

} // namespace

WindowCloseObserver::WindowCloseObserver(std::function<void(QWindow *)> closing)
    : m_closing(std::move(closing))
{
    qGuiApp->installEventFilter(this);
}

WindowCloseObserver::~WindowCloseObserver() = default;

bool WindowCloseObserver::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Close && watched->isWindowType())
        m_closing(static_cast<QWindow *>(watched));
    return false;
}

DashboardWindowController::DashboardWindowController(Needs needs) : m_needs(std::move(needs))
{
}

DashboardWindowController::~DashboardWindowController() = default;

void DashboardWindowController::show()
{
    const bool isNew = !m_window;
    if (isNew && !make())
        return;
    m_needs.activation.setPolicy(ActivationPolicy::regular);
    m_needs.installMainMenu();
    m_needs.shownChanged(true);
    // On another workspace it is mapped but not exposed: mapping it anew brings it to this one.
    if (m_window->isVisible() && !m_window->isExposed())
        m_window->hide();
    if (!m_window->isVisible())
        WindowPlace::fit(*m_window, m_needs.activation.tilesWindows() ? QSize() : m_leastSize);
    if (isNew || (!m_window->isVisible() && !WindowPlace::isOnSomeScreen(*m_window)))
        WindowPlace::centre(*m_window);
    m_window->setWindowStates(m_window->windowStates() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->requestActivate();
}

bool DashboardWindowController::make()
{
    m_engine = m_needs.makeEngine(m_needs.appearance, m_needs.graphics);
    if (!m_engine)
        return false;
    m_window = m_engine->makeWindow(u"DashboardWindow"_s, m_needs.models());
    m_leastSize = m_window->minimumSize();
    if (!m_closeObserver)
        m_closeObserver.emplace([this](QWindow *window) { closing(window); });
    return true;
}

void DashboardWindowController::closing(const QWindow *window)
{
    if (window == m_window.get()) {
        m_needs.cancelShortcutCapture();
        m_needs.shownChanged(false);
        m_engine->tidyLater();
    }
    if (!hasRegular(window))
        m_needs.activation.setPolicy(ActivationPolicy::accessory);
}

bool DashboardWindowController::hasRegular(const QWindow *besides)
{
    return qGuiApp && std::ranges::any_of(QGuiApplication::topLevelWindows(), [&](const QWindow *window) {
               return window != besides && isRegular(*window);
           });
}
