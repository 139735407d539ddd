#pragma once

struct CommandContext;

/// `sayvane sign-in`: asks for the e-mail address and the code on the terminal.
namespace SignInCommand {

int run(const CommandContext &context);

} // namespace SignInCommand
