#pragma once

struct CommandContext;

/// `sayvane transcribe`: what a WAV file says, through the configured provider.
namespace TranscribeCommand {

int run(const CommandContext &context);

} // namespace TranscribeCommand
