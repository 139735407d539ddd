#include "app/AppDelegate.h"

#include "app/FlowController.h"
#include "platform/AccessibilityTrust.h"
#include "platform/Clock.h"
#include "platform/Microphone.h"
#include "platform/Platform.h"

using namespace std::chrono_literals;

namespace {

constexpr auto pollingInterval = 2s;

} // namespace

AppDelegate::AppDelegate(Platform &platform, FlowController &flow) : m_platform(platform), m_flow(flow)
{
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching()
{
    m_platform.microphone.requestAccess();
    m_flow.start();
    if (m_platform.trust.isTrustedPrompting() && m_flow.hotkeyActive())
        startTrustWatch();
    else
        startPermissionPolling();
}

void AppDelegate::startPermissionPolling()
{
    m_trustTimer.reset();
    m_permissionTimer = m_platform.clock.every(pollingInterval, [this] {
        if (!m_platform.trust.isTrusted())
            return;
        m_flow.start();
        if (m_flow.hotkeyActive())
            startTrustWatch();
    });
}

void AppDelegate::startTrustWatch()
{
    m_permissionTimer.reset();
    m_trustTimer = m_platform.clock.every(pollingInterval, [this] {
        if (m_platform.trust.isTrusted()) {
            m_flow.start(); // installs the shortcut if it could not be before
            return;
        }
        m_flow.hotkeyPermissionLost();
        startPermissionPolling();
    });
}
