#include "windows/Windows.h"

#include "app/Host.h"
#include "platform/Platform.h"

Windows::Windows(Host &host, Platform &platform, const WindowEngine::Maker &makeEngine, Hooks hooks)
    : m_host(host),
      m_platform(platform),
      m_forms(host, platform, [this] { openSettings(); }),
      m_dashboard({.activation = platform.activation,
                   .appearance = platform.appearance,
                   .graphics = platform.graphics,
                   .makeEngine = makeEngine,
                   .models = [this] { return models(); },
                   .shownChanged = [this](bool shown) { m_screens->setShown(shown); },
                   .installMainMenu = std::move(hooks.installMainMenu),
                   .cancelShortcutCapture = std::move(hooks.cancelShortcutCapture)}),
      m_settings(platform.appearance, platform.graphics, makeEngine, m_forms.settings())
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
                                                        .defaults = m_host.defaults(),
                                                        .prefs = m_host.prefs(),
                                                        .credentials = m_host.credentials(),
                                                        .navigation = m_navigation},
                                              .history = m_host.history(),
                                              .pasteboard = m_platform.pasteboard});
    QVariantMap models = m_screens->models();
    models.insert(m_forms.models());
    return models;
}
