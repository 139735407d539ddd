#include "service/AccountsCommand.h"

#include "service/CommandLine.h"
#include "service/accounts/Accounts.h"
#include "service/machine/WallClock.h"

#include <iostream>
#include <stdexcept>

namespace {

using Verb = CommandLine::AccountsVerb;

constexpr int usualDays = 30;

void print(const Accounts::Entry &entry)
{
    const Account &account = entry.account;
    std::cout << account.email << '\t' << (account.disabled ? "disabled" : "active") << '\t'
              << account.usedSeconds << '/' << account.dailySeconds << " s\t" << entry.sessions
              << " sessions\t" << (entry.lastUsedAt ? Timestamp::of(*entry.lastUsedAt) : "never used")
              << '\n';
}

void show(Accounts &accounts, const Accounts::Entry &entry)
{
    print(entry);
    for (const DeviceSession &session : accounts.sessions(entry.account, {}))
        std::cout << session.id << '\t' << session.device << '\t' << Timestamp::of(session.createdAt) << '\t'
                  << Timestamp::of(session.lastUsedAt) << '\n';
}

void revoke(const CommandLine &line, Accounts &accounts, const Accounts::Entry &entry)
{
    if (!line.session)
        accounts.closeSessions(line.email);
    else if (!accounts.closeSession(entry.account, *line.session))
        throw std::runtime_error(line.email + " has no session " + std::to_string(*line.session));
}

} // namespace

void AccountsCommand::run(const CommandLine &line, Accounts &accounts)
{
    const auto entry = line.email.empty() ? std::nullopt : accounts.entry(line.email);
    if (!line.email.empty() && !entry)
        throw std::runtime_error("there is no account " + line.email);
    switch (line.verb) {
    case Verb::list:
        for (const Accounts::Entry &each : accounts.list())
            print(each);
        return;
    case Verb::show:
        return show(accounts, *entry);
    case Verb::disable:
    case Verb::enable:
        accounts.setDisabled(line.email, line.verb == Verb::disable);
        return;
    case Verb::remove:
        accounts.remove(line.email);
        return;
    case Verb::revoke:
        return revoke(line, accounts, *entry);
    case Verb::usage:
        for (const Accounts::DayUsage &day : accounts.usage(entry ? std::optional(line.email) : std::nullopt,
                                                            std::chrono::days(line.days.value_or(usualDays))))
            std::cout << Timestamp::of(day.day).substr(0, 10) << '\t' << day.email << '\t' << day.seconds
                      << " s\n";
        return;
    case Verb::prune: {
        const Accounts::Pruned pruned =
            accounts.prune(line.days ? std::chrono::days(*line.days) : Accounts::usageKept);
        std::cout << pruned.sessions << " sessions\t" << pruned.days << " days of usage\n";
        return;
    }
    }
}
