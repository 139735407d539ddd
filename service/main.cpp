#include "service/AccountRoutes.h"
#include "service/AccountsCommand.h"
#include "service/CommandLine.h"
#include "service/Console.h"
#include "service/LabsRoutes.h"
#include "service/Service.h"
#include "service/accounts/Backup.h"
#include "service/accounts/SignInCode.h"
#include "service/dictation/EmbeddedTranscriber.h"
#include "service/dictation/RulesCleaner.h"
#include "service/machine/Certificate.h"
#include "service/machine/DataFolder.h"
#include "service/machine/Log.h"
#include "service/openai/OpenAiInterface.h"
#include "service/upstream/UpstreamCleaner.h"
#include "service/upstream/UpstreamTranscriber.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

#include <malloc.h>
#include <sys/stat.h>
#include <sysexits.h>

namespace {

/// The signals that steer the program. Blocked here, before the first thread, and awaited in `serve`.
sigset_t awaitedSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return signals;
}

std::string addressOf(const std::string &host, int port)
{
    const std::string name = host.find(':') == std::string::npos ? host : '[' + host + ']';
    return "https://" + name + ':' + std::to_string(port);
}

size_t decodersFor(const CommandLine &line)
{
    const unsigned processors = std::max(1u, std::thread::hardware_concurrency());
    return line.decoders > 0 ? static_cast<size_t>(line.decoders) : std::min(processors, 2u);
}

/// The settings of the assistants; empty when there is no file of them.
std::filesystem::path labsFile(const CommandLine &line, const DataFolder &folder)
{
    if (!line.labs.empty())
        return line.labs;
    return std::filesystem::exists(folder.labs()) ? folder.labs() : std::filesystem::path();
}

/// The files of the operator's own certificate, or of ours, made anew where that is due.
std::pair<std::filesystem::path, std::filesystem::path> certificateFor(const CommandLine &line,
                                                                       const DataFolder &folder)
{
    if (!line.certificate.empty())
        return {line.certificate, line.privateKey};
    Certificate::ensure(folder.certificate(), folder.privateKey(), line.host);
    return {folder.certificate(), folder.privateKey()};
}

void renewCertificate(const CommandLine &line, const DataFolder &folder, HttpsServer &server)
{
    try {
        const auto [certificate, privateKey] = certificateFor(line, folder);
        server.use(certificate, privateKey);
        Log::note("the certificate was read again");
    } catch (const std::exception &e) {
        Log::failure(e.what()); // and serve on with the old one
    }
}

Upstream upstreamFor(const CommandLine &line)
{
    Upstream upstream = line.upstream;
    if (!upstream.origin.empty())
        upstream.key = Upstream::keyIn(line.upstreamKey);
    return upstream;
}

Mailer::Settings mailFor(const CommandLine &line)
{
    Mailer::Settings mail = line.mail;
    if (!line.mailCredentials.empty())
        Mailer::readCredentials(mail, line.mailCredentials);
    return mail;
}

/// The speech model is loaded only where it is needed: a service with an upstream server stays small.
std::unique_ptr<Transcriber> transcriberFor(const CommandLine &line, const UpstreamClient &upstream,
                                            std::optional<SpeechEngine> &speech)
{
    if (!upstream.upstream().speechModel.empty())
        return std::make_unique<UpstreamTranscriber>(upstream);
    speech.emplace(SpeechModel::in(line.models.empty() ? SpeechModel::packagedFolder() : line.models),
                   decodersFor(line));
    return std::make_unique<EmbeddedTranscriber>(*speech);
}

std::unique_ptr<Cleaner> cleanerFor(const UpstreamClient &upstream)
{
    if (!upstream.upstream().chatModel.empty())
        return std::make_unique<UpstreamCleaner>(upstream);
    return std::make_unique<RulesCleaner>();
}

void serve(const CommandLine &line, DataFolder &folder)
{
    const sigset_t signals = awaitedSignals();
    ::mallopt(M_MMAP_THRESHOLD, 1024 * 1024); // a recording's memory goes back to the system at once
    folder.lockForServing();
    const auto [certificate, privateKey] = certificateFor(line, folder);
    Accounts accounts(folder.database());
    HttpsServer server(certificate, privateKey);
    const int port = server.bind(line.host, line.port);
    const UpstreamClient upstream(upstreamFor(line));
    std::optional<SpeechEngine> speech;
    const std::unique_ptr<Transcriber> transcriber = transcriberFor(line, upstream, speech);
    const std::unique_ptr<Cleaner> cleaner = cleanerFor(upstream);
    Transcriptions transcriptions(accounts, *transcriber);
    Cleanups cleanups(accounts, *cleaner);
    SignIns signIns(folder.database(), SignInCode::keyIn(folder.codeKey()), systemTime,
                    line.mail.server.empty() ? 0 : line.mailsPerDay);
    const Assistants assistants(labsFile(line, folder), [](const char *name) { return std::getenv(name); });
    std::optional<Mailer> mailer;
    if (!line.mail.server.empty())
        mailer.emplace(mailFor(line));
    const auto showCode = [&mailer](const SignIns::Code &code, const std::string &email,
                                    const std::string &device) {
        if (mailer)
            return mailer->send(code, email, device);
        return Console::show(code, email, device) ? Mailer::Outcome::sent : Mailer::Outcome::failed;
    };
    // The service comes last: it takes every address that nobody took before.
    const AccountRoutes accountRoutes(
        server, accounts, signIns,
        line.newAccounts ? AccountRoutes::SignUps::open : AccountRoutes::SignUps::closed, showCode);
    const LabsRoutes labsRoutes(server, accounts, assistants);
    const OpenAiInterface openAi(server, accounts, transcriptions, cleanups);
    const Service service(server, accounts, transcriptions, cleanups);
    std::thread serving([&server] { server.serve(); });
    std::cout << "listening on " << addressOf(line.host, port) << " certificate " << certificate.string()
              << '\n'
              << std::flush; // whoever waits reads it now
    for (int received = SIGHUP; received == SIGHUP;) {
        sigwait(&signals, &received);
        if (received == SIGHUP)
            renewCertificate(line, folder, server);
    }
    Log::note("ending");
    server.end();
    serving.join();
}

int run(const CommandLine &line)
{
    switch (line.action) {
    case CommandLine::Action::help:
        std::cout << CommandLine::help(line.topic);
        return EX_OK;
    case CommandLine::Action::version:
        std::cout << "sayvane-service " SAYVANE_VERSION "\n";
        return EX_OK;
    case CommandLine::Action::serve:
    case CommandLine::Action::session:
    case CommandLine::Action::accounts:
    case CommandLine::Action::backup:
        break;
    }
    ::umask(077);
    DataFolder folder(line.data.empty() ? DataFolder::usual() : line.data);
    if (line.action == CommandLine::Action::serve) {
        serve(line, folder);
    } else if (line.action == CommandLine::Action::backup) {
        Backup::write(folder.database(), line.copy);
    } else {
        Accounts accounts(folder.database(), systemTime, Schema::Older::isRefused);
        if (line.action == CommandLine::Action::accounts)
            AccountsCommand::run(line, accounts);
        else
            std::cout << accounts.openSession(line.email, line.device, line.dailyMinutes) << '\n';
    }
    return EX_OK;
}

} // namespace

int main(int argc, char *argv[])
{
    const auto line = CommandLine::parse({argv + 1, argv + std::max(argc, 1)});
    if (!line) {
        std::cerr << "sayvane-service: " << line.error() << "\n(sayvane-service --help tells more)\n";
        return EX_USAGE;
    }
    try {
        return run(*line);
    } catch (const std::exception &e) {
        std::cerr << "sayvane-service: " << e.what() << "\n";
        return EX_UNAVAILABLE;
    }
}
