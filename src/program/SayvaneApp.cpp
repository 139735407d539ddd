#include "program/SayvaneApp.h"

#include "base/Background.h"
#include "base/Platform.h"
#include "dictation/FlowLog.h"

#include <QGuiApplication>
#include <QLoggingCategory>
#include <QSessionManager>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app")

} // namespace

SayvaneApp::SayvaneApp(Platform &platform, const QString &serviceAddress, const QString &iconsFolder,
                       const WindowEngine::Maker &makeWindowEngine)
    : m_leftRecordings(platform.folders, platform.clock),
      m_host(platform, serviceAddress),
      m_mainMenuKeys(m_mainMenu),
      m_windows(m_host, platform, makeWindowEngine,
                {.installMainMenu = [this] { m_mainMenu.installIfNeeded(); },
                 .cancelShortcutCapture = [this] { m_host.hotkeyRecorder().cancel(); }}),
      m_settings(
          m_mainMenu, [] { /* windows ask for the front themselves when they are shown */ },
          [this] {
              m_windows.openSettingsWindow();
              return true;
          },
          [this] { return openSection(u"settings"_s); }),
      m_menu({.flow = m_host.flow(),
              .history = m_host.history(),
              .account = m_host.account(),
              .answerMode = m_host.answerMode(),
              .prefs = m_host.prefs(),
              .pasteboard = platform.pasteboard},
             {.openDashboard = [this] { m_windows.openDashboard(); },
              .openSettings = [this] { m_settings.open(); },
              .quit = &QCoreApplication::quit}),
      m_tray(m_host.flow(), m_menu, iconsFolder, [this] { m_windows.openDashboard(); }),
      m_control({.platform = platform,
                 .flow = m_host.flow(),
                 .signIn = m_host.signIn(),
                 .account = m_host.account(),
                 .answerMode = m_host.answerMode(),
                 .prefs = m_host.prefs(),
                 .transcriber = m_host.transcriber()},
                {.open = [this](const QString &section) { return openSection(section); },
                 .quit = &QCoreApplication::quit,
                 .examineTray = [this] { return m_tray.checkup(); }})
{
    FlowLog::follow(m_host.flow());
    // Its folder may be on another disk. The history waits for the background before it goes, and us with it.
    connect(&m_host.flow(), &FlowController::recordingKept, this,
            [this, &background = platform.background](const QString &path) {
                background.run(
                    *this, [this, path] { m_leftRecordings.takeIn(path); },
                    [this] { m_leftRecordings.watchAge(); });
            });
    follow();
}

void SayvaneApp::follow()
{
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state != Qt::ApplicationActive)
            m_host.delegate().applicationDidResignActive();
    });
    // The desktop starts what the user wants started at log-in; a session manager must not do it again.
    const auto neverRestart = [](QSessionManager &manager) {
        manager.setRestartHint(QSessionManager::RestartNever);
    };
    connect(qGuiApp, &QGuiApplication::saveStateRequest, this, neverRestart, Qt::DirectConnection);
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, neverRestart, Qt::DirectConnection);
}

void SayvaneApp::launch(const QString &profile)
{
    m_leftRecordings.takeIn();
    m_leftRecordings.watchAge();
    if (!m_control.publish(profile))
        qCWarning(log, "The session bus is not to be had: the command line cannot reach this program.");
    m_tray.show();
    m_host.launch([this] { m_windows.openDashboard(); });
}

bool SayvaneApp::openSection(const QString &section)
{
    const auto named = std::ranges::find_if(DashboardSection::allCases, [&](DashboardSection::Id id) {
        return DashboardSection(id).rawValue() == section;
    });
    if (named != DashboardSection::allCases.end())
        m_windows.navigation().setSection(*named);
    else if (!section.isEmpty())
        return false;
    m_windows.openDashboard();
    return true;
}
