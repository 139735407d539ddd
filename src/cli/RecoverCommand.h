#pragma once

struct CommandContext;

/// `sayvane recover`: lists, transcribes or deletes what a crash left behind.
namespace RecoverCommand {

int run(const CommandContext &context);

} // namespace RecoverCommand
