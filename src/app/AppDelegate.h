#pragma once

#include <memory>

class Clock;
class FlowController;
class Timer;
struct Platform;

/// Starts the shortcut at launch and keeps it alive as the permission to watch keys comes and goes.
///
/// At most one of its two timers runs: one waits for the permission, the other watches that it stays.
class AppDelegate
{
public:
    AppDelegate(Platform &platform, FlowController &flow);
    ~AppDelegate();

    void applicationDidFinishLaunching();

private:
    void startPermissionPolling();
    void startTrustWatch();

    Platform &m_platform;
    FlowController &m_flow;
    std::unique_ptr<Timer> m_permissionTimer;
    std::unique_ptr<Timer> m_trustTimer;
};
