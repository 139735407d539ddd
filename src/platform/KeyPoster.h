#pragma once

#include "platform/KeyTap.h"

#include <QCoroTask>

/// Types on the user's behalf.
class KeyPoster
{
public:
    virtual ~KeyPoster() = default;

    /// Sends the chord, press then release, to whatever has the keyboard focus, with exactly its
    /// modifiers: those that the user still holds are waited for a moment and then taken out of the way.
    /// No key is left pressed. False when the keystroke could not be made.
    virtual QCoro::Task<bool> post(KeyChord chord) = 0;
};
