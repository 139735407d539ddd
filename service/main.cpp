#include "service/AccountRoutes.h"
#include "service/CommandLine.h"
#include "service/Console.h"
#include "service/LabsRoutes.h"
#include "service/Service.h"
#include "service/machine/Certificate.h"
#include "service/machine/DataFolder.h"
#include "service/machine/Log.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <thread>

#include <malloc.h>
#include <sys/stat.h>
#include <sysexits.h>

namespace {

/// The signals that end the program. Blocked here, before the first thread, and awaited in `serve`.
sigset_t endingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
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

void serve(const CommandLine &line, DataFolder &folder)
{
    const sigset_t signals = endingSignals();
    ::mallopt(M_MMAP_THRESHOLD, 1024 * 1024); // a recording's memory goes back to the system at once
    folder.lockForServing();
    Certificate::ensure(folder.certificate(), folder.privateKey(), line.host);
    Accounts accounts(folder.database());
    HttpsServer server(folder.certificate(), folder.privateKey());
    const int port = server.bind(line.host, line.port);
    SpeechEngine speech(SpeechModel::in(line.models.empty() ? SpeechModel::packagedFolder() : line.models),
                        decodersFor(line));
    SignIns signIns(folder.database(), systemTime);
    const AccountRoutes accountRoutes(
        server, accounts, signIns,
        line.newAccounts ? AccountRoutes::SignUps::open : AccountRoutes::SignUps::closed, Console::show);
    const Assistants assistants(labsFile(line, folder), [](const char *name) { return std::getenv(name); });
    const LabsRoutes labsRoutes(server, accounts, assistants);
    const Service service(server, accounts, speech);
    std::thread serving([&server] { server.serve(); });
    std::cout << "listening on " << addressOf(line.host, port) << " certificate "
              << folder.certificate().string() << '\n'
              << std::flush; // whoever waits reads it now
    int received = 0;
    sigwait(&signals, &received);
    Log::note("ending");
    server.end();
    serving.join();
}

int run(const CommandLine &line)
{
    switch (line.action) {
    case CommandLine::Action::help:
        std::cout << CommandLine::help();
        return EX_OK;
    case CommandLine::Action::version:
        std::cout << "sayvane-service " SAYVANE_VERSION "\n";
        return EX_OK;
    case CommandLine::Action::serve:
    case CommandLine::Action::session:
        break;
    }
    ::umask(077);
    DataFolder folder(line.data.empty() ? DataFolder::usual() : line.data);
    if (line.action == CommandLine::Action::serve) {
        serve(line, folder);
    } else {
        std::cout << Accounts(folder.database()).openSession(line.email, line.device, line.dailyMinutes)
                  << '\n';
    }
    return EX_OK;
}

} // namespace

int main(int argc, char *argv[])
{
    const auto line = CommandLine::parse({argv + 1, argv + std::max(argc, 1)});
    if (!line) {
        std::cerr << "sayvane-service: " << line.error() << "\n" << CommandLine::help();
        return EX_USAGE;
    }
    try {
        return run(*line);
    } catch (const std::exception &e) {
        std::cerr << "sayvane-service: " << e.what() << "\n";
        return EX_UNAVAILABLE;
    }
}
