#include "commands/OfflineProgram.h"

#include "commands/CommandContext.h"
#include "platform/Platform.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

std::expected<std::unique_ptr<OfflineProgram>, QString> OfflineProgram::take(const CommandContext &context)
{
    Platform &machine = context.machine();
    auto lock = std::make_unique<ProfileLock>(machine.folders);
    if (!lock->tryLock(5s))
        return std::unexpected(lock->objection());
    return std::unique_ptr<OfflineProgram>(
        new OfflineProgram(std::move(lock), machine, context.asked.service));
}
