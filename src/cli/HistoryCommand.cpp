#include "cli/HistoryCommand.h"

#include "base/Clock.h"
#include "base/Folders.h"
#include "base/Platform.h"
#include "cli/CommandContext.h"
#include "cli/ExitCode.h"
#include "cli/HistoryTable.h"
#include "cli/Terminal.h"
#include "history/HistoryFile.h"

#include <QFile>

using namespace Qt::StringLiterals;

// The file is only read: it is replaced whole, so it can be read at any moment, and what cannot be
// understood is the program's to move aside.
int HistoryCommand::run(const CommandContext &context)
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
