#include "service/CommandLine.h"

#include "service/accounts/DeviceName.h"
#include "service/accounts/EmailAddress.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <string_view>
#include <utility>

namespace {

using Complaint = std::optional<std::string>;

using Verb = CommandLine::AccountsVerb;

constexpr std::array<std::pair<std::string_view, Verb>, 8> verbs{{{"list", Verb::list},
                                                                  {"show", Verb::show},
                                                                  {"disable", Verb::disable},
                                                                  {"enable", Verb::enable},
                                                                  {"delete", Verb::remove},
                                                                  {"revoke", Verb::revoke},
                                                                  {"usage", Verb::usage},
                                                                  {"prune", Verb::prune}}};

using Command = std::pair<std::string_view, CommandLine::Action>;

constexpr std::array<Command, 4> commands{{{"serve", CommandLine::Action::serve},
                                           {"session", CommandLine::Action::session},
                                           {"accounts", CommandLine::Action::accounts},
                                           {"backup", CommandLine::Action::backup}}};

bool takesDays(Verb verb)
{
    return verb == Verb::usage || verb == Verb::prune;
}

bool needsEmail(Verb verb)
{
    return verb != Verb::list && !takesDays(verb);
}

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

Complaint setMailOption(CommandLine &line, std::string_view name, std::string_view value)
{
    if (name == "--mail") {
        const auto mail = Mailer::at(value);
        if (!mail)
            return mail.error();
        line.mail.server = mail->server;
        line.mail.isLocal = mail->isLocal;
        return {};
    }
    if (name == "--mail-from") {
        const auto sender = EmailAddress::normalised(value);
        line.mail.sender = sender.value_or("");
        return sender ? Complaint() : "--mail-from needs an e-mail address";
    }
    if (name == "--mail-credentials") {
        line.mailCredentials = value;
        return {};
    }
    if (name == "--mail-daily") {
        const auto count = numberIn(value, 1, 1'000'000);
        line.mailsPerDay = count.value_or(0);
        return count ? Complaint() : "--mail-daily needs a number from 1 to 1000000";
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
    if (name.starts_with("--mail"))
        return setMailOption(line, name, value);
    return "unknown option " + std::string(name);
}

Complaint setEmail(CommandLine &line, std::string_view value)
{
    const auto email = EmailAddress::normalised(value);
    line.email = email.value_or("");
    return email ? Complaint() : "--email needs an e-mail address";
}

Complaint setSessionOption(CommandLine &line, std::string_view name, std::string_view value)
{
    if (name == "--email")
        return setEmail(line, value);
    if (name == "--device") {
        line.device = DeviceName::shaped(value);
        return {};
    }
    if (name == "--daily-minutes") {
        line.dailyMinutes = numberIn(value, 1, 1440);
        return line.dailyMinutes ? Complaint() : "--daily-minutes needs a number from 1 to 1440";
    }
    return "unknown option " + std::string(name);
}

Complaint setAccountsOption(CommandLine &line, std::string_view name, std::string_view value)
{
    if (name == "--email")
        return setEmail(line, value);
    if (name == "--session" && line.verb == CommandLine::AccountsVerb::revoke) {
        line.session = numberIn(value, 1, INT_MAX);
        return line.session ? Complaint() : "--session needs the number of a session";
    }
    if (name == "--days" && takesDays(line.verb)) {
        line.days = numberIn(value, 1, 36500);
        return line.days ? Complaint() : "--days needs a number from 1 to 36500";
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
    if (line.action == CommandLine::Action::accounts)
        return setAccountsOption(line, name, value);
    line.copy = value;
    return name == "--to" ? Complaint() : "unknown option " + std::string(name);
}

/// What only the whole line can tell.
Complaint complaintAbout(const CommandLine &line)
{
    const bool hasModel = !line.upstream.speechModel.empty() || !line.upstream.chatModel.empty();
    if (line.action == CommandLine::Action::session && line.email.empty())
        return "session needs --email";
    if (line.action == CommandLine::Action::accounts && line.email.empty() && needsEmail(line.verb))
        return "this needs --email";
    if (line.action == CommandLine::Action::backup && line.copy.empty())
        return "backup needs --to";
    if (line.certificate.empty() != line.privateKey.empty())
        return "--certificate and --key need each other";
    if (line.mail.server.empty() != line.mail.sender.empty())
        return "--mail and --mail-from need each other";
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
        const auto *const known = std::ranges::find(commands, command, &Command::first);
        if (known == commands.end())
            return std::unexpected("unknown command " + std::string(command));
        line.action = line.topic = known->second;
        if (line.action == Action::accounts && i < arguments.size() && arguments[i][0] != '-') {
            const std::string_view word = arguments[i++];
            const auto *const verb =
                std::ranges::find(verbs, word, &std::pair<std::string_view, Verb>::first);
            if (verb == verbs.end())
                return std::unexpected("unknown command accounts " + std::string(word));
            line.verb = verb->second;
        }
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

Sign-in codes are printed, unless a mail server is named:
  --mail ADDRESS              such as smtp://mail.example.com:587 (STARTTLS) or
                              smtps://mail.example.com:465
  --mail-from ADDRESS         the sender of the mails
  --mail-credentials FILE     a name and a password to log in with, a line each
  --mail-daily COUNT          no more mails than this in a day (1000)

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
    const std::string_view accounts = R"(usage: sayvane-service accounts [COMMAND] [OPTIONS]

Tells of the accounts, or changes one. Works beside a server, from its next
request on.

  list                   all accounts: address, state, seconds used today of how
                         many, sessions, last use
  show --email ADDRESS   one account and its sessions with their numbers
  disable --email ADDRESS  it keeps its sessions but may do nothing
  enable --email ADDRESS
  delete --email ADDRESS   with its sessions and its usage
  revoke --email ADDRESS [--session NUMBER]  ends one session, or all
  usage [--email ADDRESS] [--days COUNT]     seconds by day (30 days)
  prune [--days COUNT]   forgets idle sessions and usage older than so many days
                         (400); a server does so every day
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
    if (topic == Action::accounts)
        return std::string(accounts);
    if (topic == Action::backup)
        return std::string(backup);
    return std::string(serve)
        .append("\n")
        .append(session)
        .append("\n")
        .append(accounts)
        .append("\n")
        .append(backup)
        .append("\n  --help, --version      of the program; COMMAND --help tells of one command\n");
}
