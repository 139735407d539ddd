#pragma once

#include <functional>
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

/// The desktop's wishes about looks, followed while somebody listens.
class Appearance
{
public:
    virtual ~Appearance() = default;

    /// What is known so far; it may become known only after `follow`.
    virtual AppearanceWishes wishes() const = 0;

    /// Asks the desktop, and calls on the main thread whenever the wishes change from then on. An empty
    /// function stops it.
    virtual void follow(std::function<void()> changed) = 0;
};
