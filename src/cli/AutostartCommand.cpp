#include "cli/AutostartCommand.h"

#include "base/Autostart.h"
#include "base/Platform.h"
#include "cli/CommandContext.h"
#include "cli/ExitCode.h"
#include "cli/Terminal.h"

using namespace Qt::StringLiterals;

int AutostartCommand::run(const CommandContext &context)
{
    Autostart &autostart = context.machine().autostart;
    const QString wanted = context.asked.arguments.value(0);
    if (!wanted.isEmpty()) {
        if (const auto done = autostart.set(wanted == "on"_L1); !done)
            return Terminal::complain(done.error(), ExitCode::failed);
    }
    return Terminal::print(autostart.isOn() ? u"on\n"_s : u"off\n"_s) ? ExitCode::done : ExitCode::failed;
}
