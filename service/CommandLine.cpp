#include "service/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace {

using Complaint = std::optional<std::string>;

std::optional<int> numberIn(std::string_view text, int least, int most)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole && value >= least && value <= most ? std::optional(value) : std::nullopt;
}

bool isHost(std::string_view text)
{
    return !text.empty() && text.size() < 254 && std::ranges::all_of(text, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
               c == '-' || c == ':';
    });
}

bool isEmail(std::string_view text)
{
    const size_t at = text.find('@');
    return text.size() < 255 && at != std::string_view::npos && at > 0 && at + 1 < text.size() &&
           text.find('@', at + 1) == std::string_view::npos &&
           text.find_first_of(" \t\r\n") == std::string_view::npos;
}

std::string lowered(std::string_view text)
{
    std::string result(text);
    std::ranges::transform(result, result.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return result;
}

/// A model's name is sent as it is.
bool isModel(std::string_view text)
{
    return !text.empty() && text.size() <= 200 &&
           std::ranges::all_of(text, [](char c) { return c > ' ' && c < 0x7f; });
}

Complaint setUpstreamOption(CommandLine &line, std::string_view name, std::string_view value)
{
    if (name == "--upstream") {
        const auto place = Upstream::at(value);
        if (!place)
            return place.error();
        line.upstream.origin = place->origin;
        line.upstream.path = place->path;
        return {};
    }
    if (name == "--upstream-key-file") {
        line.upstreamKey = value;
        return {};
    }
    if (name == "--upstream-timeout") {
        const auto seconds = numberIn(value, 1, 600);
        line.upstream.patience = std::chrono::seconds(seconds.value_or(0));
        return seconds ? Complaint() : "--upstream-timeout needs a number from 1 to 600";
    }
    if (name == "--upstream-model" || name == "--upstream-chat-model") {
        (name == "--upstream-model" ? line.upstream.speechModel : line.upstream.chatModel) = value;
        return isModel(value) ? Complaint() : std::string(name) + " needs the name of a model";
    }
    return "unknown option " + std::string(name);
}

Complaint setServeOption(CommandLine &line, std::string_view name, std::string_view value)
{
    if (name == "--host") {
        line.host = value;
        return isHost(value) ? Complaint() : "--host needs a host name or an address";
    }
    if (name == "--port") {
        const auto port = numberIn(value, 0, 65535);
        line.port = port.value_or(0);
        return port ? Complaint() : "--port needs a number from 0 to 65535";
    }
    if (name == "--models") {
        line.models = value;
        return {};
    }
    if (name == "--decoders") {
        const auto decoders = numberIn(value, 1, 64);
        line.decoders = decoders.value_or(0);
        return decoders ? Complaint() : "--decoders needs a number from 1 to 64";
    }
    if (name == "--labs") {
        line.labs = value;
        return {};
    }
    if (name == "--sign-ups") {
        line.newAccounts = value == "open";
        return value == "open" || value == "closed" ? Complaint() : "--sign-ups needs open or closed";
    }
    if (name == "--certificate" || name == "--key") {
        (name == "--key" ? line.privateKey : line.certificate) = value;
        return {};
    }
    if (name.starts_with("--upstream"))
        return setUpstreamOption(line, name, value);
    return "unknown option " + std::string(name);
}

Complaint setSessionOption(CommandLine &line, std::string_view name, std::string_view value)
{
    if (name == "--email") {
        line.email = lowered(value);
        return isEmail(value) ? Complaint() : "--email needs an e-mail address";
    }
    if (name == "--device") {
        line.device = value.substr(0, 64);
        return {};
    }
    if (name == "--daily-minutes") {
        line.dailyMinutes = numberIn(value, 1, 1440);
        return line.dailyMinutes ? Complaint() : "--daily-minutes needs a number from 1 to 1440";
    }
    return "unknown option " + std::string(name);
}

Complaint setOption(CommandLine &line, std::string_view name, std::string_view value)
{
    if (name == "--data") {
        line.data = value;
        return {};
    }
    if (line.action == CommandLine::Action::serve)
        return setServeOption(line, name, value);
    if (line.action == CommandLine::Action::session)
        return setSessionOption(line, name, value);
    line.copy = value;
    return name == "--to" ? Complaint() : "unknown option " + std::string(name);
}

/// What only the whole line can tell.
Complaint complaintAbout(const CommandLine &line)
{
    const bool hasModel = !line.upstream.speechModel.empty() || !line.upstream.chatModel.empty();
    if (line.action == CommandLine::Action::session && line.email.empty())
        return "session needs --email";
    if (line.action == CommandLine::Action::backup && line.copy.empty())
        return "backup needs --to";
    if (line.certificate.empty() != line.privateKey.empty())
        return "--certificate and --key need each other";
    if (hasModel && line.upstream.origin.empty())
        return "the model of an upstream server needs --upstream";
    if (!hasModel && !line.upstream.origin.empty())
        return "--upstream needs --upstream-model, --upstream-chat-model or both";
    return {};
}

} // namespace

std::expected<CommandLine, std::string> CommandLine::parse(std::span<const char *const> arguments)
{
    CommandLine line;
    size_t i = 0;
    if (!arguments.empty() && arguments[0][0] != '-') {
        const std::string_view command = arguments[i++];
        if (command != "serve" && command != "session" && command != "backup")
            return std::unexpected("unknown command " + std::string(command));
        line.action = command == "serve"     ? Action::serve
                      : command == "session" ? Action::session
                                             : Action::backup;
        line.topic = line.action;
    }
    for (; i < arguments.size(); ++i) {
        std::string_view name = arguments[i];
        if (name == "--help" || name == "-h" || name == "--version") {
            line.action = name == "--version" ? Action::version : Action::help;
            return line;
        }
        std::string_view value;
        if (const size_t equals = name.find('=');
            name.starts_with("--") && equals != std::string_view::npos) {
            value = name.substr(equals + 1);
            name = name.substr(0, equals);
        } else if (name.starts_with("--") && i + 1 < arguments.size()) {
            value = arguments[++i];
        }
        Complaint complaint = setOption(line, name, value);
        if (!complaint && value.empty())
            complaint = std::string(name) + " needs a value";
        if (complaint)
            return std::unexpected(*complaint);
    }
    if (const Complaint complaint = complaintAbout(line))
        return std::unexpected(*complaint);
    return line;
}

std::string CommandLine::help(Action topic)
{
    const std::string_view serve = R"(usage: sayvane-service [serve] [OPTIONS]

Answers Sayvane's requests, and those of OpenAI-compatible clients, over HTTPS
until it is told to end. SIGHUP reads the certificate again.

  --host HOST            where to listen (127.0.0.1)
  --port PORT            0 is any free port (8765)
  --data FOLDER          database and certificate ($XDG_DATA_HOME/sayvane-service)
  --certificate FILE     a certificate chain of your own (PEM), with
  --key FILE             its private key
  --models FOLDER        speech models, laid out like the packaged ones
  --decoders COUNT       recordings are decoded by so many threads, 100 MB each
                         (one per processor, two at most)
  --sign-ups open|closed whether new e-mail addresses may sign in (open)
  --labs FILE            addresses, models and keys of the assistants
                         (labs.json in the data folder)

Another OpenAI-compatible server may do the work:
  --upstream ADDRESS          its base address, such as https://example.com/v1
  --upstream-model NAME       its model that transcribes; no decoders are loaded
  --upstream-chat-model NAME  its model that cleans up
  --upstream-key-file FILE    its key (else the variable SAYVANE_UPSTREAM_KEY)
  --upstream-timeout SECONDS  for a whole answer (150)
)";
    const std::string_view session =
        R"(usage: sayvane-service session --email ADDRESS [OPTIONS]

Makes a session and prints its token, once. Works beside a server.

  --email ADDRESS        the account; made when it is new
  --device NAME          a name to tell sessions apart
  --daily-minutes COUNT  the account's allowance (60 for a new account)
  --data FOLDER          the server's ($XDG_DATA_HOME/sayvane-service)
)";
    const std::string_view backup = R"(usage: sayvane-service backup --to FILE [--data FOLDER]

Copies the database whole, also while a server works.

  --to FILE              replaced once the copy is complete
  --data FOLDER          the server's ($XDG_DATA_HOME/sayvane-service)
)";
    if (topic == Action::serve)
        return std::string(serve);
    if (topic == Action::session)
        return std::string(session);
    if (topic == Action::backup)
        return std::string(backup);
    return std::string(serve).append("\n").append(session).append("\n").append(backup).append(
        "\n  --help, --version      of the program; COMMAND --help tells of one command\n");
}
