#include "program/Windows.h"

#include "base/Platform.h"
#include "program/Host.h"
#include "tray/MainMenu.h"

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto updateNoticeDuration = 4s;

} // namespace

SettingsOpener::SettingsOpener(MainMenu &menu, std::function<void()> activate, Handler showSettingsWindow,
                               Handler showPreferencesWindow)
    : m_menu(menu),
      m_activate(std::move(activate)),
      m_showSettingsWindow(std::move(showSettingsWindow)),
      m_showPreferencesWindow(std::move(showPreferencesWindow))
{
}

void SettingsOpener::open()
{
    m_activate();
    m_menu.installIfNeeded();
    if (!m_showSettingsWindow())
        m_showPreferencesWindow();
}

Windows::Windows(Host &host, Platform &platform, const WindowEngine::Maker &makeEngine, Hooks hooks)
    : m_host(host),
      m_platform(platform),
      m_makeEngine([this, makeEngine](Appearance &appearance, const Graphics &graphics) {
          auto engine = makeEngine(appearance, graphics);
          if (!engine)
              tellOfUpdate();
          return engine;
      }),
      m_forms(host, platform, [this] { openSettings(); }),
      m_dashboard({.activation = platform.activation,
                   .appearance = platform.appearance,
                   .graphics = platform.graphics,
                   .makeEngine = m_makeEngine,
                   .models = [this] { return models(); },
                   .shownChanged = [this](bool shown) { m_screens->setShown(shown); },
                   .installMainMenu = std::move(hooks.installMainMenu),
                   .cancelShortcutCapture = std::move(hooks.cancelShortcutCapture)}),
      m_settings(platform.activation, platform.appearance, platform.graphics, m_makeEngine,
                 m_forms.settings())
{
}

void Windows::openSettings()
{
    m_navigation.setSection(DashboardSection::settings);
    openDashboard();
}

QVariantMap Windows::models()
{
    m_screens.emplace(DashboardScreens::Needs{.frame = {.clock = m_platform.clock,
                                                        .prefs = m_host.prefs(),
                                                        .credentials = m_host.credentials(),
                                                        .navigation = m_navigation},
                                              .history = m_host.history(),
                                              .pasteboard = m_platform.pasteboard});
    QVariantMap models = m_screens->models();
    models.insert(m_forms.models());
    return models;
}

void Windows::tellOfUpdate()
{
    if (m_host.flow().state() != FlowState::idle)
        return;
    OverlayPanel &overlay = m_host.flow().overlay();
    overlay.show(FlowState::idle, tr("Sayvane was updated. Quit and start it again."), OverlayTone::warning);
    overlay.hide(updateNoticeDuration);
}
