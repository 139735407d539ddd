#pragma once

#include "base/Activation.h"

/// Desktops list a program by its ordinary windows, so there is no switch to throw: what is left to do
/// when the last one closes is to become small again.
class DesktopActivation final : public Activation
{
public:
    /// Back at `accessory`, memory that the windows have freed goes back to the system a moment later.
    void setPolicy(ActivationPolicy policy) override;
    /// On sway and Hyprland, which tell by a variable. A window manager of X11 does as it likes anyway.
    bool tilesWindows() const override;

private:
    ActivationPolicy m_policy = ActivationPolicy::accessory;
};
