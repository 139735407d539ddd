#pragma once

#include <functional>
#include <memory>

class Credentials;
class FlowController;
class HotkeyRecorder;
class Prefs;
class Timer;
struct Platform;

/// Starts the shortcut at launch and keeps it alive as the permission to watch keys comes and goes; shows
/// the dashboard to those who want it at launch or have yet to say whom they dictate to.
///
/// At most one of its two timers runs: one waits for the permission, the other watches that it stays.
class AppDelegate
{
public:
    struct Collaborators
    {
        Platform &platform;
        FlowController &flow;
        HotkeyRecorder &hotkeyRecorder;
        const Prefs &prefs;
        const Credentials &credentials;
    };
    explicit AppDelegate(const Collaborators &with);
    ~AppDelegate();

    void applicationDidFinishLaunching(std::function<void()> showDashboard);
    /// Another program has come to the front: a shortcut that was being chosen stays as it was.
    void applicationDidResignActive();
    /// Something else is known of the keys and the session.
    void credentialsChanged();

private:
    void startPermissionPolling();
    void startTrustWatch();
    void openDashboardIfWanted();

    Platform &m_platform;
    FlowController &m_flow;
    HotkeyRecorder &m_hotkeyRecorder;
    const Prefs &m_prefs;
    const Credentials &m_credentials;
    std::function<void()> m_showDashboard;
    bool m_undecided = false; // whether to show it: the keychain has yet to answer
    std::unique_ptr<Timer> m_permissionTimer;
    std::unique_ptr<Timer> m_trustTimer;
    std::unique_ptr<Timer> m_dashboardTimer;
};
