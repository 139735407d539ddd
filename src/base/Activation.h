#pragma once

/// What the program is to the desktop: one with ordinary windows, or one that only stands by.
enum class ActivationPolicy { regular, accessory };

/// The program's standing among the desktop's programs.
class Activation
{
public:
    virtual ~Activation() = default;

    virtual void setPolicy(ActivationPolicy policy) = 0;

    /// Whether the desktop gives each window a place of its own choice, and cuts off what asks for more.
    virtual bool tilesWindows() const = 0;
};
