#pragma once

#include "account/AccountSessionStore.h"
#include "account/AccountStatus.h"
#include "account/Credentials.h"
#include "app/AppDelegate.h"
#include "app/FlowController.h"
#include "history/HistoryStore.h"
#include "settings/Defaults.h"
#include "settings/Keychain.h"
#include "settings/Prefs.h"
#include "speech/Transcriber.h"

struct Platform;

/// The program without its machine: every long-lived object, by value, in the order they depend on each
/// other.
class Host
{
public:
    /// `serviceAddress` is the hosted service that a user who chose none dictates to.
    Host(Platform &platform, const QString &serviceAddress);
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    /// Puts the program to work.
    void launch() { m_delegate.applicationDidFinishLaunching(); }

    Keychain &keychain() { return m_keychain; }
    Defaults &defaults() { return m_preferences.defaults; }
    Prefs &prefs() { return m_preferences.prefs; }
    AccountSessionStore &sessions() { return m_sessions; }
    AccountStatus &account() { return m_account; }
    const Credentials &credentials() const { return m_credentials; }
    HistoryStore &history() { return m_history; }
    Transcriber &transcriber() { return m_transcriber; }
    FlowController &flow() { return m_flow; }

private:
    /// Preferences brought up to date before anything reads one.
    struct Preferences
    {
        Preferences(DefaultsStore &store, Keychain &keychain, const QString &serviceAddress);
        Defaults defaults;
        Prefs prefs;
    };

    Keychain m_keychain;
    Preferences m_preferences;
    AccountSessionStore m_sessions;
    AccountStatus m_account;
    Credentials m_credentials;
    HistoryStore m_history;
    Transcriber m_transcriber;
    FlowController m_flow;
    AppDelegate m_delegate;
};
