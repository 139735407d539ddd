#pragma once

struct CommandContext;

/// `sayvane open`: shows the window, starting the program where it does not run.
namespace OpenCommand {

int run(const CommandContext &context);

} // namespace OpenCommand
