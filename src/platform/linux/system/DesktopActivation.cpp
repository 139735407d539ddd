#include "platform/linux/system/DesktopActivation.h"

#include <malloc.h>
#include <utility>

void DesktopActivation::setPolicy(ActivationPolicy policy)
{
    if (std::exchange(m_policy, policy) == ActivationPolicy::regular && policy == ActivationPolicy::accessory)
        malloc_trim(0);
}
