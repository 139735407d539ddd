#include "cli/OfflineProgram.h"

#include "base/Platform.h"
#include "cli/Commands.h"

#include <QCoroTask>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

std::expected<std::unique_ptr<OfflineProgram>, QString> OfflineProgram::take(const CommandContext &context)
{
    Platform &machine = context.machine();
    auto lock = std::make_unique<ProfileLock>(machine.folders);
    if (!lock->tryLock(5s))
        return std::unexpected(lock->objection());
    std::unique_ptr<OfflineProgram> program(
        new OfflineProgram(std::move(lock), machine, context.asked.service));
    QCoro::waitFor(program->host().keychain().refresh()); // so that it knows who is signed in
    return program;
}
