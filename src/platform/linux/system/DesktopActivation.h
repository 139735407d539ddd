#pragma once

#include "platform/Activation.h"

/// Desktops list a program by its ordinary windows, so there is no switch to throw: what is left to do
/// when the last one closes is to become small again.
class DesktopActivation final : public Activation
{
public:
    /// Back at `accessory`, memory that the windows have freed goes back to the system a moment later.
    void setPolicy(ActivationPolicy policy) override;

private:
    ActivationPolicy m_policy = ActivationPolicy::accessory;
};
