#include "program/AppDelegate.h"

#include "base/AccessibilityTrust.h"
#include "base/Clock.h"
#include "base/Microphone.h"
#include "base/Platform.h"
#include "cloud/account/Credentials.h"
#include "dictation/FlowController.h"
#include "dictation/HotkeyRecorder.h"
#include "preferences/Prefs.h"

#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto pollingInterval = 2s;
constexpr auto dashboardDelay = 2s;

} // namespace

AppDelegate::AppDelegate(const Collaborators &with)
    : m_platform(with.platform),
      m_flow(with.flow),
      m_hotkeyRecorder(with.hotkeyRecorder),
      m_prefs(with.prefs),
      m_credentials(with.credentials)
{
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching(std::function<void()> showDashboard)
{
    m_showDashboard = std::move(showDashboard);
    m_platform.microphone.requestAccess();
    m_flow.start();
    if (m_platform.trust.isTrustedPrompting() && m_flow.hotkeyActive())
        startTrustWatch();
    else
        startPermissionPolling();
    openDashboardIfWanted();
}

void AppDelegate::applicationDidResignActive()
{
    m_hotkeyRecorder.cancel();
}

void AppDelegate::openDashboardIfWanted()
{
    if (m_prefs.showDashboardOnLaunch())
        return m_showDashboard();
    m_undecided = m_credentials.arePending();
    const auto isNeeded = [this] { return !m_credentials.hasCredential(m_prefs.provider()); };
    if (m_undecided || !isNeeded())
        return;
    m_dashboardTimer = m_platform.clock.after(dashboardDelay, [this, isNeeded] {
        if (isNeeded()) // still: a keyring may have come since
            m_showDashboard();
    });
}

void AppDelegate::credentialsChanged()
{
    if (m_undecided)
        openDashboardIfWanted();
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
