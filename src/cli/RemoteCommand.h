#pragma once

struct CommandContext;

/// The commands that the running program carries out: toggle, start, stop, cancel, status, last, quit,
/// doctor; and in its absence `doctor --undo`, which takes back what was changed in the desktop's settings.
namespace RemoteCommand {

int run(const CommandContext &context);

} // namespace RemoteCommand
