#include "commands/TranscribeCommand.h"

#include "commands/CommandContext.h"
#include "commands/RecordingText.h"
#include "commands/SpokenFile.h"
#include "commands/Terminal.h"

int TranscribeCommand::run(const CommandContext &context)
{
    const auto spoken = SpokenFile::of(context.asked.arguments.first());
    if (!spoken)
        return Terminal::complain(spoken.error().sentence, spoken.error().status);
    return RecordingText::print(spoken->path(), context);
}
