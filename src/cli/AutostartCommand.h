#pragma once

struct CommandContext;

/// `sayvane autostart`: whether Sayvane starts when the user logs in.
namespace AutostartCommand {

int run(const CommandContext &context);

} // namespace AutostartCommand
