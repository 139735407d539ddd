#include "cli/SignInCommand.h"

#include "cli/CommandContext.h"
#include "cli/ExitCode.h"
#include "cli/OfflineProgram.h"
#include "cli/Terminal.h"
#include "program/SignInSteps.h"

#include <QCoroTask>

#include <functional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int codeAttempts = 3;
// Longer than any request, and than a keyring that waits for its password.
constexpr auto answerLimit = 5min;

/// Who does what is typed here; each gives a sentence about what went wrong, or nothing.
struct Steps
{
    std::function<QString(const QString &email)> sendCode;
    std::function<QString(const QString &code)> submit;
};

int converse(const Steps &steps)
{
    const auto email = Terminal::ask(u"E-mail address:"_s);
    if (!email)
        return Terminal::complain(u"No address was given."_s, ExitCode::failed);
    if (const QString error = steps.sendCode(*email); !error.isEmpty())
        return Terminal::complain(error, ExitCode::failed);
    for (int attempt = 1;; ++attempt) {
        const auto code = Terminal::ask(u"Six-digit code from the e-mail:"_s);
        if (!code)
            return Terminal::complain(u"No code was given."_s, ExitCode::failed);
        const QString error = steps.submit(*code);
        if (error.isEmpty())
            return ExitCode::done;
        Terminal::complain(error, ExitCode::failed);
        if (attempt == codeAttempts)
            return ExitCode::failed;
    }
}

int signInThere(const ControlClient &running)
{
    const auto ask = [&running](const QString &method) {
        return [&running, method](const QString &text) {
            const ControlClient::Answer answer = running.call(method, {text}, answerLimit);
            return answer ? QString() : answer.error().message;
        };
    };
    return converse({.sendCode = ask(u"SendCode"_s), .submit = ask(u"SignIn"_s)});
}

int signInHere(const CommandContext &context)
{
    const auto program = OfflineProgram::take(context);
    if (!program)
        return Terminal::complain(program.error(), ExitCode::inUse);
    Host &host = (*program)->host();
    SignInSteps steps(host.signIn(), host.account());
    return converse(
        {.sendCode = [&steps](const QString &email) { return QCoro::waitFor(steps.sendCode(email)); },
         .submit = [&steps](const QString &code) { return QCoro::waitFor(steps.submit(code)); }});
}

} // namespace

int SignInCommand::run(const CommandContext &context)
{
    return context.running.isServed() ? signInThere(context.running) : signInHere(context);
}
