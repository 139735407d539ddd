#include "commands/TranscribeCommand.h"

#include "commands/CommandContext.h"
#include "commands/ExitCode.h"
#include "commands/RecordingText.h"
#include "commands/Terminal.h"

#include <QFile>

using namespace Qt::StringLiterals;

int TranscribeCommand::run(const CommandContext &context)
{
    const QString path = context.asked.arguments.first();
    if (QFile file(path); !file.open(QIODevice::ReadOnly))
        return Terminal::complain(u"%1: %2."_s.arg(path, file.errorString()), ExitCode::noInput);
    return RecordingText::print(path, context);
}
