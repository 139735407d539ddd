#pragma once

#include "base/Listeners.h"

#include <optional>

/// Whether the desktop asks for light or dark windows.
enum class ColorScheme { noPreference, light, dark };

/// How the desktop wants its windows to look.
struct AppearanceWishes
{
    ColorScheme scheme = ColorScheme::noPreference;
    std::optional<unsigned> accent; ///< 0xRRGGBB; none where the desktop has no accent
    bool highContrast = false;
    bool reducedMotion = false;

    bool operator==(const AppearanceWishes &) const = default;
};

/// The desktop's wishes about looks, followed by each who listens.
class Appearance
{
public:
    virtual ~Appearance() = default;

    /// What is known so far; it may become known only after `follow`.
    virtual AppearanceWishes wishes() const = 0;

    /// Asks the desktop, and calls the listener whenever the wishes change.
    virtual void follow(const Listener &listener) = 0;
};
