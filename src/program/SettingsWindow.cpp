#include "program/SettingsWindow.h"

#include "base/Activation.h"
#include "program/DashboardWindowController.h"
#include "program/WindowPlace.h"
#include "screens/settings/SettingsView.h"

#include <QWindow>

#include <utility>

using namespace Qt::StringLiterals;

SettingsWindow::SettingsWindow(Activation &activation, Appearance &appearance, const Graphics &graphics,
                               WindowEngine::Maker makeEngine, SettingsForms &forms)
    : m_activation(activation),
      m_appearance(appearance),
      m_graphics(graphics),
      m_makeEngine(std::move(makeEngine)),
      m_forms(forms)
{
}

SettingsWindow::~SettingsWindow() = default;

void SettingsWindow::show()
{
    if (!m_window && !make())
        return;
    m_activation.setPolicy(ActivationPolicy::regular);
    // On another workspace it is mapped but not exposed: mapping it anew brings it to this one.
    if (m_window->isVisible() && !m_window->isExposed())
        m_window->hide();
    m_window->setWindowStates(m_window->windowStates() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->requestActivate();
}

bool SettingsWindow::make()
{
    m_engine = m_makeEngine(m_appearance, m_graphics);
    if (!m_engine)
        return false;
    m_window = m_engine->makeWindow(u"SettingsWindow"_s, {{u"forms"_s, QVariant::fromValue(&m_forms)}});
    WindowPlace::fit(*m_window, m_activation.tilesWindows() ? QSize() : m_window->minimumSize());
    // While it tells that it was closed the window is still in use.
    connect(m_window.get(), &QWindow::visibleChanged, this, &SettingsWindow::dropIfClosed,
            Qt::QueuedConnection);
    return true;
}

void SettingsWindow::dropIfClosed()
{
    if (!m_window || m_window->isVisible())
        return;
    m_window.reset();
    m_engine.reset();
    if (!DashboardWindowController::hasRegular(nullptr))
        m_activation.setPolicy(ActivationPolicy::accessory);
}
