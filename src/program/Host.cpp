#include "program/Host.h"

#include "base/Platform.h"

Host::Preferences::Preferences(DefaultsStore &store, Keychain &keychain, const QString &serviceAddress)
    : prefs(store, serviceAddress)
{
    prefs.registerDefaults(keychain);
}

Host::Host(Platform &platform, const QString &serviceAddress)
    : m_keychain(platform.secrets),
      m_preferences(platform.defaults, m_keychain, serviceAddress),
      m_sessions(m_keychain),
      m_account(m_sessions, m_preferences.prefs),
      m_credentials(m_keychain, m_sessions),
      m_accountClient({.prefs = m_preferences.prefs,
                       .sessions = m_sessions,
                       .account = m_account,
                       .http = platform.http,
                       .clock = platform.clock}),
      m_signIn({.client = m_accountClient,
                .sessions = m_sessions,
                .account = m_account,
                .keychain = m_keychain,
                .computerName = platform.computerName,
                .clock = platform.clock}),
      m_labsClient(m_accountClient, m_credentials),
      m_labs({.client = m_labsClient,
              .account = m_account,
              .prefs = m_preferences.prefs,
              .clock = platform.clock}),
      m_answerMode(m_preferences.prefs, platform.clock),
      m_history(platform.folders, platform.clock, platform.background),
      m_transcriber({.prefs = m_preferences.prefs,
                     .credentials = m_credentials,
                     .sessions = m_sessions,
                     .account = m_account,
                     .http = platform.http,
                     .clock = platform.clock}),
      m_flow(platform, m_preferences.prefs, m_transcriber, m_labsClient, m_labs, m_answerMode, m_history),
      m_hotkeyRecorder(
          platform.localKeys, [this] { return m_flow.hotkey(); },
          [this](const HotkeySpec &spec) { m_flow.updateHotkey(spec); }),
      m_overlay(m_flow.overlay(), platform.panels, platform.clock),
      m_delegate({.platform = platform,
                  .flow = m_flow,
                  .hotkeyRecorder = m_hotkeyRecorder,
                  .prefs = m_preferences.prefs,
                  .credentials = m_credentials})
{
    QObject::connect(&m_account, &AccountStatus::sessionRejected, &m_flow, &FlowController::reportSignedOut);
    QObject::connect(&m_keychain, &Keychain::changed, &m_flow, [this] { m_delegate.credentialsChanged(); });
    QObject::connect(&m_account, &AccountStatus::signedOut, &m_answerMode,
                     [this] { m_answerMode.setEnabled(false); });
    QObject::connect(&m_flow, &FlowController::hotkeyActiveChanged, &m_hotkeyRecorder,
                     &HotkeyRecorder::suspendRunning);
}

void Host::launch(std::function<void()> showDashboard)
{
    m_delegate.applicationDidFinishLaunching(std::move(showDashboard));
    m_overlay.prepare();
    m_flow.followMachine();
}
