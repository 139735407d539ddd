#pragma once

#include "cli/ControlClient.h"
#include "cli/Invocation.h"

#include <functional>

struct Platform;

/// What a command works with.
struct CommandContext
{
    Invocation asked;
    ControlClient running;               ///< the program, if it runs
    std::function<Platform &()> machine; ///< made when first asked for: most commands need none
};
