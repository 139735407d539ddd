#pragma once

struct CommandContext;

/// `sayvane sign-out`: ends the session here and on the service.
namespace SignOutCommand {

int run(const CommandContext &context);

} // namespace SignOutCommand
