#pragma once

struct CommandContext;

/// The commands that the running program carries out: toggle, start, stop, cancel, status, last, quit.
namespace RemoteCommand {

int run(const CommandContext &context);

} // namespace RemoteCommand
