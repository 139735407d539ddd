#pragma once

#include "cli/CommandLine.h"
#include "cli/ControlClient.h"

#include <functional>

struct Platform;

/// What a command works with.
struct CommandContext
{
    Invocation asked;
    ControlClient running;               ///< the program, if it runs
    std::function<Platform &()> machine; ///< made when first asked for: most commands need none
};

/// Everything that `sayvane` does and ends. Each command gives its exit status; none needs a display, all
/// need an application object.
namespace Commands {

/// Carries out whichever command is asked for.
int run(const CommandContext &context);

/// What the running program carries out: toggle, start, stop, cancel, status, last, quit, doctor; and in its
/// absence `doctor --undo`, which takes back what was changed in the desktop's settings.
int remote(const CommandContext &context);
/// Shows the window, starting the program where it does not run.
int open(const CommandContext &context);

/// What a recording says, through the configured provider.
int transcribe(const CommandContext &context);
/// Lists, transcribes or deletes what a crash left behind.
int recover(const CommandContext &context);
/// All dictations, newest first, for people, as JSON or as CSV.
int history(const CommandContext &context);

/// Asks for the e-mail address and the code on the terminal.
int signIn(const CommandContext &context);
int signOut(const CommandContext &context);
/// Stores the secret from standard input, trimmed, without the program's windows: "groq_api_key",
/// "openai_api_key" or "sayvane_session". Nothing removes it.
int storeSecret(const CommandContext &context);

/// Tells, or chooses, whether the program starts at log-in.
int autostart(const CommandContext &context);

} // namespace Commands
