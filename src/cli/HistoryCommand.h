#pragma once

struct CommandContext;

/// `sayvane history`: all dictations, newest first, for people, as JSON or as CSV.
namespace HistoryCommand {

int run(const CommandContext &context);

} // namespace HistoryCommand
