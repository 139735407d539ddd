#include "machine/desktop/DesktopActivation.h"

#include <QCoreApplication>
#include <QTimer>

#include <malloc.h>
#include <utility>

using namespace std::chrono_literals;

void DesktopActivation::setPolicy(ActivationPolicy policy)
{
    // The windows are still closing.
    if (std::exchange(m_policy, policy) == ActivationPolicy::regular && policy == ActivationPolicy::accessory)
        QTimer::singleShot(1s, qApp, [] { malloc_trim(0); });
}

bool DesktopActivation::tilesWindows() const
{
    return qEnvironmentVariableIsSet("SWAYSOCK") || qEnvironmentVariableIsSet("HYPRLAND_INSTANCE_SIGNATURE");
}
