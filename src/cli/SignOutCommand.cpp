#include "cli/SignOutCommand.h"

#include "cli/CommandContext.h"
#include "cli/ExitCode.h"
#include "cli/OfflineProgram.h"
#include "cli/Terminal.h"

#include <QCoroTask>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Long enough for a keyring that waits for its password.
constexpr auto answerLimit = 5min;

int signOutHere(Host &host)
{
    const auto token = QCoro::waitFor(host.sessions().fetch({}));
    const int32_t status = QCoro::waitFor(host.sessions().clear());
    if (status != SecretStatus::success)
        return Terminal::complain(u"Couldn't remove the session from the Keychain: "_s +
                                      host.keychain().message(status),
                                  ExitCode::failed);
    host.account().signOut();
    // Signed out here is signed out, whether or not the service can be told.
    if (token)
        QCoro::waitFor(host.accountClient().logout(*token, {}));
    return ExitCode::done;
}

} // namespace

int SignOutCommand::run(const CommandContext &context)
{
    const ControlClient::Answer answer = context.running.call(u"SignOut"_s, {}, answerLimit);
    if (answer)
        return ExitCode::done;
    if (answer.error().kind == ControlClient::Error::Kind::failed)
        return Terminal::complain(answer.error().message, ExitCode::failed);
    const auto program = OfflineProgram::take(context);
    if (!program)
        return Terminal::complain(program.error(), ExitCode::inUse);
    return signOutHere((*program)->host());
}
