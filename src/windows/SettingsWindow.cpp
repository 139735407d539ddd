#include "windows/SettingsWindow.h"

#include "settings/screen/SettingsForms.h"

#include <utility>

using namespace Qt::StringLiterals;

SettingsWindow::SettingsWindow(Appearance &appearance, const Graphics &graphics,
                               WindowEngine::Maker makeEngine, SettingsForms &forms)
    : m_appearance(appearance),
      m_graphics(graphics),
      m_makeEngine(std::move(makeEngine)),
      m_forms(forms)
{
}

SettingsWindow::~SettingsWindow() = default;

void SettingsWindow::show()
{
    if (!m_window)
        make();
    m_window->setWindowStates(m_window->windowStates() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->requestActivate();
}

void SettingsWindow::make()
{
    m_engine = m_makeEngine(m_appearance, m_graphics);
    m_window =
        m_engine->makeWindow(u"settings/SettingsWindow"_s, {{u"forms"_s, QVariant::fromValue(&m_forms)}});
    // While it tells that it was closed the window is still in use.
    connect(m_window.get(), &QWindow::visibleChanged, this, &SettingsWindow::dropIfClosed,
            Qt::QueuedConnection);
}

void SettingsWindow::dropIfClosed()
{
    if (!m_window || m_window->isVisible())
        return;
    m_window.reset();
    m_engine.reset();
}
