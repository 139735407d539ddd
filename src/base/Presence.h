#pragma once

#include "base/Listeners.h"

#include <memory>

/// Whether somebody is there to see the screen and to take what is typed, and the machine's sleep.
class Presence
{
public:
    /// Holds off a sleep that is about to begin for as long as it is kept; the system allows some seconds.
    class Wakefulness
    {
    public:
        virtual ~Wakefulness() = default;
    };

    virtual ~Presence() = default;

    /// Whether the screen is locked or the machine is about to sleep. Known only after `follow`.
    virtual bool isAway() const = 0;

    /// Calls the listener whenever `isAway` has changed.
    virtual void follow(const Listener &listener) = 0;

    /// Calls the listener whenever the machine has come back from sleep.
    virtual void followResume(const Listener &listener) = 0;

    /// Asks for a delay of the next sleep; where that is not to be had, the sleep comes when it comes.
    virtual std::unique_ptr<Wakefulness> delaySleep() = 0;
};
