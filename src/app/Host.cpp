#include "app/Host.h"

#include "platform/Platform.h"

Host::Preferences::Preferences(DefaultsStore &store, Keychain &keychain, const QString &serviceAddress)
    : defaults(store),
      prefs(defaults, serviceAddress)
{
    prefs.registerDefaults(keychain);
}

Host::Host(Platform &platform, const QString &serviceAddress)
    : m_keychain(platform.secrets),
      m_preferences(platform.defaults, m_keychain, serviceAddress),
      m_sessions(m_keychain),
      m_account(m_sessions, m_preferences.prefs),
      m_credentials(m_keychain, m_sessions),
      m_history(platform.folders, platform.clock),
      m_transcriber({.prefs = m_preferences.prefs,
                     .credentials = m_credentials,
                     .sessions = m_sessions,
                     .account = m_account,
                     .http = platform.http,
                     .clock = platform.clock}),
      m_flow(platform, m_preferences.defaults, m_preferences.prefs, m_transcriber, m_history),
      m_overlay(m_flow.overlay(), platform.panels, platform.clock),
      m_delegate(platform, m_flow)
{
    QObject::connect(&m_account, &AccountStatus::sessionRejected, &m_flow, &FlowController::reportSignedOut);
}

void Host::launch()
{
    m_delegate.applicationDidFinishLaunching();
    m_overlay.prepare();
}
