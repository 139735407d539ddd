#include "cli/Commands.h"

#include "base/Platform.h"
#include "base/Provider.h"
#include "cli/OfflineProgram.h"
#include "cli/Terminal.h"
#include "cloud/account/AccountSession.h"
#include "preferences/Keychain.h"
#include "program/SignInSteps.h"

#include <QCoroTask>
#include <QFile>

#include <cstdio>
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

std::optional<int32_t> stored(Keychain &keychain, const QString &account, const QString &secret)
{
    if (account == "sayvane_session"_L1)
        return QCoro::waitFor(AccountSessionStore(keychain).save(secret));
    for (const Provider provider : Providers::apiKeyProviders) {
        if (Providers::keychainAccount(provider) == account)
            return QCoro::waitFor(
                keychain.save(secret.trimmed(), account, Keychain::Accessibility::afterFirstUnlock));
    }
    return std::nullopt;
}

/// What a script or a person gave; empty on success, else what went wrong.
QString store(SecretStore &secrets, const QString &account, const QByteArray &secret)
{
    Keychain keychain(secrets);
    const auto status = stored(keychain, account, QString::fromUtf8(secret));
    if (!status)
        return u"There is no secret of the name %1."_s.arg(account);
    if (*status == SecretStatus::success)
        return {};
    return u"Couldn't save to Keychain: "_s + keychain.message(*status);
}

} // namespace

int Commands::signIn(const CommandContext &context)
{
    return context.running.isServed() ? signInThere(context.running) : signInHere(context);
}

int Commands::signOut(const CommandContext &context)
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

int Commands::storeSecret(const CommandContext &context)
{
    static constexpr qint64 longestSecret = 4096;
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return Terminal::complain(input.errorString(), ExitCode::failed);
    const QString trouble = store(context.machine().secrets, context.asked.secret, input.read(longestSecret));
    return trouble.isEmpty() ? ExitCode::done : Terminal::complain(trouble, ExitCode::failed);
}
