#pragma once

#include "service/mail/Mailer.h"
#include "service/upstream/Upstream.h"

#include <expected>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

/// What the user asks of the program.
struct CommandLine
{
    enum class Action { serve, session, accounts, backup, help, version };
    /// What the operator does with accounts.
    enum class AccountsVerb { list, show, disable, enable, remove, revoke, usage, prune };

    Action action = Action::serve;
    Action topic = Action::help; ///< of the help: one command, or all of them
    std::filesystem::path data;  ///< empty: the usual folder
    std::string host = "127.0.0.1";
    int port = 8765;              ///< 0: any free one
    std::filesystem::path models; ///< empty: the packaged ones
    int decoders = 0;             ///< 0: one per processor, two at most
    bool newAccounts = true;      ///< whether addresses without an account may sign in
    std::filesystem::path labs;   ///< settings of the assistants; empty: those in the data folder, if any
    Upstream upstream;            ///< without its key; without an origin: none
    std::filesystem::path upstreamKey; ///< empty: from the environment
    Mailer::Settings mail;             ///< without its credentials; without a server: codes are printed
    std::filesystem::path mailCredentials;
    int mailsPerDay = 1000;
    std::filesystem::path certificate; ///< empty, like the key: one of our own making
    std::filesystem::path privateKey;
    std::filesystem::path copy; ///< the backup
    AccountsVerb verb = AccountsVerb::list;
    std::string email;
    std::optional<int> session; ///< to revoke; none: all
    std::optional<int> days;    ///< of usage to show, or to keep
    std::string device = "unnamed";
    std::optional<int> dailyMinutes;

    /// Expects the arguments without the program's name; the error is a sentence.
    static std::expected<CommandLine, std::string> parse(std::span<const char *const> arguments);
    static std::string help(Action topic);
};
