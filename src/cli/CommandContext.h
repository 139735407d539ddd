#pragma once

#include "cli/CommandLine.h"
#include "cli/ControlClient.h"

#include <functional>

struct Platform;

/// What a command works with.
struct CommandContext
{
    Invocation asked;
    ControlClient running;               ///< the program, if it runs
    std::function<Platform &()> machine; ///< made when first asked for: most commands need none
};
