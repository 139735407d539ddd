#pragma once

#include <functional>

/// What the windowless part of the program can ask of the part with windows.
struct ShellCommands
{
    std::function<void()> openDashboard;
    std::function<void()> openSettings;
    std::function<void()> quit;
};
