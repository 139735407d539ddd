#include "cli/Commands.h"

#include "base/Platform.h"
#include "cli/AutostartCommand.h"
#include "cli/CommandContext.h"
#include "cli/CommandLine.h"
#include "cli/ExitCode.h"
#include "cli/HistoryCommand.h"
#include "cli/OpenCommand.h"
#include "cli/RecoverCommand.h"
#include "cli/RemoteCommand.h"
#include "cli/SecretCommand.h"
#include "cli/SignInCommand.h"
#include "cli/SignOutCommand.h"
#include "cli/Terminal.h"
#include "cli/TranscribeCommand.h"

#include <QCoreApplication>
#include <QHash>

#include <functional>

using namespace Qt::StringLiterals;

int Commands::run(const CommandContext &context)
{
    const Invocation &asked = context.asked;
    if (asked.help)
        return Terminal::print(CommandLine::help()) ? ExitCode::done : ExitCode::failed;
    if (asked.version)
        return Terminal::print(u"sayvane %1\n"_s.arg(QCoreApplication::applicationVersion()))
                   ? ExitCode::done
                   : ExitCode::failed;
    if (!asked.secret.isEmpty())
        return SecretCommand::run(context.machine().secrets, asked.secret);
    static const QHash<QString, int (*)(const CommandContext &)> others{
        {u"autostart"_s, AutostartCommand::run},
        {u"history"_s, HistoryCommand::run},
        {u"open"_s, OpenCommand::run},
        {u"recover"_s, RecoverCommand::run},
        {u"sign-in"_s, SignInCommand::run},
        {u"sign-out"_s, SignOutCommand::run},
        {u"transcribe"_s, TranscribeCommand::run},
    };
    return others.value(asked.verb, RemoteCommand::run)(context);
}
