#include "cli/Commands.h"

#include "base/Autostart.h"
#include "base/Clock.h"
#include "base/Folders.h"
#include "base/Platform.h"
#include "cli/HistoryTable.h"
#include "cli/Terminal.h"
#include "history/HistoryFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>

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
        return storeSecret(context);
    static const QHash<QString, int (*)(const CommandContext &)> others{
        {u"autostart"_s, autostart},   {u"history"_s, history}, {u"open"_s, open},
        {u"recover"_s, recover},       {u"sign-in"_s, signIn},  {u"sign-out"_s, signOut},
        {u"transcribe"_s, transcribe},
    };
    return others.value(asked.verb, remote)(context);
}

int Commands::autostart(const CommandContext &context)
{
    Autostart &autostart = context.machine().autostart;
    const QString wanted = context.asked.arguments.value(0);
    if (!wanted.isEmpty()) {
        if (const auto done = autostart.set(wanted == "on"_L1); !done)
            return Terminal::complain(done.error(), ExitCode::failed);
    }
    return Terminal::print(autostart.isOn() ? u"on\n"_s : u"off\n"_s) ? ExitCode::done : ExitCode::failed;
}

// The file is only read: it is replaced whole, so it can be read at any moment, and what cannot be
// understood is the program's to move aside.
int Commands::history(const CommandContext &context)
{
    const Platform &machine = context.machine();
    QFile file(machine.folders.history());
    QList<Dictation> records;
    if (file.exists()) {
        if (!file.open(QIODevice::ReadOnly))
            return Terminal::complain(u"The history cannot be read: %1."_s.arg(file.errorString()),
                                      ExitCode::noInput);
        const auto decoded = HistoryFile::decode(file.readAll());
        if (!decoded)
            return Terminal::complain(u"The history cannot be read: %1."_s.arg(decoded.error()),
                                      ExitCode::noInput);
        records = *decoded;
    }
    QString text;
    switch (context.asked.output) {
    case Invocation::Output::json:
        text = QString::fromUtf8(HistoryFile::encode(records)) + u'\n';
        break;
    case Invocation::Output::csv:
        text = HistoryTable::csv(records);
        break;
    case Invocation::Output::text:
        text = HistoryTable::text(records, machine.clock.timeZone());
        break;
    }
    return Terminal::print(text) ? ExitCode::done : ExitCode::failed;
}
