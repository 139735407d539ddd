#pragma once

#include "cloud/account/AccountClient.h"
#include "cloud/account/AccountSession.h"
#include "cloud/account/AccountSignIn.h"
#include "cloud/account/AccountStatus.h"
#include "cloud/account/Credentials.h"
#include "cloud/labs/LabsAnswerMode.h"
#include "cloud/labs/LabsClient.h"
#include "cloud/labs/LabsSession.h"
#include "cloud/speech/Transcriber.h"
#include "dictation/FlowController.h"
#include "dictation/HotkeyRecorder.h"
#include "history/HistoryStore.h"
#include "overlay/OverlayDisplay.h"
#include "preferences/Keychain.h"
#include "preferences/Prefs.h"
#include "program/AppDelegate.h"

#include <functional>
#include <utility>

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

    /// Puts the program to work; it asks for the dashboard when the user is to see it.
    void launch(std::function<void()> showDashboard);

    Keychain &keychain() { return m_keychain; }
    Prefs &prefs() { return m_preferences.prefs; }
    AccountSessionStore &sessions() { return m_sessions; }
    AccountStatus &account() { return m_account; }
    AccountClient &accountClient() { return m_accountClient; }
    AccountSignIn &signIn() { return m_signIn; }
    LabsClient &labsClient() { return m_labsClient; }
    LabsSession &labs() { return m_labs; }
    LabsAnswerMode &answerMode() { return m_answerMode; }
    const Credentials &credentials() const { return m_credentials; }
    HistoryStore &history() { return m_history; }
    Transcriber &transcriber() { return m_transcriber; }
    FlowController &flow() { return m_flow; }
    AppDelegate &delegate() { return m_delegate; }
    HotkeyRecorder &hotkeyRecorder() { return m_hotkeyRecorder; }

private:
    /// Preferences brought up to date before anything reads one.
    struct Preferences
    {
        Preferences(DefaultsStore &store, Keychain &keychain, const QString &serviceAddress);
        Prefs prefs;
    };

    Keychain m_keychain;
    Preferences m_preferences;
    AccountSessionStore m_sessions;
    AccountStatus m_account;
    Credentials m_credentials;
    AccountClient m_accountClient;
    AccountSignIn m_signIn;
    LabsClient m_labsClient;
    LabsSession m_labs;
    LabsAnswerMode m_answerMode;
    HistoryStore m_history;
    Transcriber m_transcriber;
    FlowController m_flow;
    HotkeyRecorder m_hotkeyRecorder;
    OverlayDisplay m_overlay;
    AppDelegate m_delegate;
};
