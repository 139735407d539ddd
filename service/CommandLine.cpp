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

} // namespace

std::expected<CommandLine, std::string> CommandLine::parse(std::span<const char *const> arguments)
{
    CommandLine line;
    size_t i = 0;
    if (!arguments.empty() && arguments[0][0] != '-') {
        const std::string_view command = arguments[i++];
        if (command != "serve" && command != "session")
            return std::unexpected("unknown command " + std::string(command));
        line.action = command == "serve" ? Action::serve : Action::session;
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
        Complaint complaint;
        if (name == "--data") {
            line.data = value;
        } else {
            complaint = line.action == Action::serve ? setServeOption(line, name, value)
                                                     : setSessionOption(line, name, value);
        }
        if (!complaint && value.empty())
            complaint = std::string(name) + " needs a value";
        if (complaint)
            return std::unexpected(*complaint);
    }
    if (line.action == Action::session && line.email.empty())
        return std::unexpected("session needs --email");
    return line;
}

const char *CommandLine::help()
{
    return R"(usage: sayvane-service [serve] [--host HOST] [--port PORT] [--data FOLDER]
                       [--models FOLDER] [--decoders COUNT]
                       [--sign-ups open|closed] [--labs FILE]
       sayvane-service session --email ADDRESS [--device NAME]
                       [--daily-minutes COUNT] [--data FOLDER]

serve    answers Sayvane's requests over HTTPS until it is told to end
  --host HOST            where to listen (127.0.0.1)
  --port PORT            0 is any free port (8765)
  --models FOLDER        speech models, laid out like the packaged ones
  --decoders COUNT       recordings are decoded by so many threads, 100 MB each
  --sign-ups open|closed whether new e-mail addresses may sign in (open)
  --labs FILE            addresses, models and keys of the assistants
                         (labs.json in the data folder)
session  makes a session and prints its token, once
  --email ADDRESS        the account; made when it is new
  --device NAME          a name to tell sessions apart
  --daily-minutes COUNT  the account's allowance (60 for a new account)

  --data FOLDER          database and certificate ($XDG_DATA_HOME/sayvane-service)
  --help, --version
)";
}
