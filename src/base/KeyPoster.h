#pragma once

#include "base/KeyTap.h"

#include <QCoroTask>

#include <functional>

/// Types on the user's behalf.
class KeyPoster
{
public:
    virtual ~KeyPoster() = default;

    /// A chord will be posted in a moment: finds out meanwhile what can only be had from others.
    virtual void prepare() = 0;

    /// Sends the chord, press then release, to whatever has the keyboard focus, with exactly its
    /// modifiers: those that the user still holds are waited for a moment and then taken out of the way.
    /// No key is left pressed. `mayStill` is asked last of all, after that moment. False when the keystroke
    /// could not be made, or no longer may.
    virtual QCoro::Task<bool> post(KeyChord chord, std::function<bool()> mayStill) = 0;
};
