#pragma once

struct CommandContext;

/// Everything that `sayvane` does and ends.
namespace Commands {

/// Carries out the command and gives its exit status. Needs an application object, not a display.
int run(const CommandContext &context);

} // namespace Commands
