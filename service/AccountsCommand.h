#pragma once

struct CommandLine;

class Accounts;

/// What the operator does with accounts from the command line.
namespace AccountsCommand {

/// Carries it out and tells on standard output, one line a fact, its columns separated by tabs. Throws
/// std::runtime_error when there is no such account or session.
void run(const CommandLine &line, Accounts &accounts);

} // namespace AccountsCommand
