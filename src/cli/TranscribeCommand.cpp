#include "cli/TranscribeCommand.h"

#include "cli/CommandContext.h"
#include "cli/RecordingText.h"
#include "cli/SpokenFile.h"
#include "cli/Terminal.h"

int TranscribeCommand::run(const CommandContext &context)
{
    const auto spoken = SpokenFile::of(context.asked.arguments.first());
    if (!spoken)
        return Terminal::complain(spoken.error().sentence, spoken.error().status);
    return RecordingText::print(spoken->path(), context);
}
