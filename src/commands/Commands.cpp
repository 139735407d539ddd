#include "commands/Commands.h"

#include "commands/AutostartCommand.h"
#include "commands/CommandContext.h"
#include "commands/CommandLine.h"
#include "commands/ExitCode.h"
#include "commands/HistoryCommand.h"
#include "commands/OpenCommand.h"
#include "commands/RecoverCommand.h"
#include "commands/RemoteCommand.h"
#include "commands/SecretCommand.h"
#include "commands/SignInCommand.h"
#include "commands/SignOutCommand.h"
#include "commands/Terminal.h"
#include "commands/TranscribeCommand.h"
#include "platform/Platform.h"

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
