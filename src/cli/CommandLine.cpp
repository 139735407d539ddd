#include "cli/CommandLine.h"

#include "preferences/Prefs.h"

#include <QCommandLineParser>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

struct Verb
{
    QLatin1StringView name;
    QLatin1StringView usage; // its own words, as --help shows them
    int fewest;              // words of its own
    int most;
    QLatin1StringView options; // its own options
    QLatin1StringView purpose;
};

constexpr std::array verbTable{
    Verb{"toggle"_L1, ""_L1, 0, 0, ""_L1, "Start to listen, or stop and transcribe"_L1},
    Verb{"start"_L1, ""_L1, 0, 0, ""_L1, "Start to listen"_L1},
    Verb{"stop"_L1, ""_L1, 0, 0, ""_L1, "Stop and transcribe"_L1},
    Verb{"cancel"_L1, ""_L1, 0, 0, ""_L1, "Stop and forget what was said"_L1},
    Verb{"status"_L1, "[--json]"_L1, 0, 0, "json"_L1, "Tell what Sayvane is doing"_L1},
    Verb{"doctor"_L1, "[--json|--undo]"_L1, 0, 0, "json undo"_L1,
         "Look at all that a dictation needs; --undo takes back what the desktop's settings were given"_L1},
    Verb{"open"_L1, "[SECTION]"_L1, 0, 1, ""_L1,
         "Show dictation, insights, dictionary, labs or settings; starts Sayvane"_L1},
    Verb{"last"_L1, ""_L1, 0, 0, ""_L1, "Print the last transcript"_L1},
    Verb{"transcribe"_L1, "FILE"_L1, 1, 1, ""_L1, "Print what a recording says; - is standard input"_L1},
    Verb{"history"_L1, "[--json|--csv]"_L1, 0, 0, "json csv"_L1, "Print all dictations, newest first"_L1},
    Verb{"recover"_L1, "[ACTION]"_L1, 0, 2, "all"_L1,
         "What was not transcribed: list, transcribe ID, delete ID, delete --all, failed on, failed off"_L1},
    Verb{"autostart"_L1, "[on|off]"_L1, 0, 1, ""_L1, "Tell or choose whether Sayvane starts at log-in"_L1},
    Verb{"sign-in"_L1, ""_L1, 0, 0, ""_L1, "Sign in to the hosted service"_L1},
    Verb{"sign-out"_L1, ""_L1, 0, 0, ""_L1, "Sign out of the hosted service"_L1},
    Verb{"quit"_L1, ""_L1, 0, 0, ""_L1, "End Sayvane"_L1},
};

struct Options
{
    QCommandLineOption help{{u"h"_s, u"help"_s}, u"Print this."_s};
    QCommandLineOption version{{u"v"_s, u"version"_s}, u"Print the version."_s};
    QCommandLineOption profile{u"profile"_s, u"Keep settings, history and secrets apart under this name."_s,
                               u"name"_s};
    QCommandLineOption service{u"service"_s, u"The hosted service to dictate to, an https address."_s,
                               u"address"_s, u"https://accounts.sayvane.app"_s};
    QCommandLineOption secret{
        u"store-secret"_s,
        u"Store the secret read from standard input (nothing: remove it) and end: groq_api_key, "
        "openai_api_key or sayvane_session."_s,
        u"name"_s};
    QCommandLineOption json{u"json"_s, u"Print JSON."_s};
    QCommandLineOption csv{u"csv"_s, u"Print comma-separated values (RFC 4180)."_s};
    QCommandLineOption all{u"all"_s, u"All of them."_s};
    QCommandLineOption undo{u"undo"_s, u"Take back."_s};

    void addTo(QCommandLineParser &parser) const
    {
        parser.addOptions({help, version, profile, service, secret, json, csv, all, undo});
    }
};

/// What is wrong with the words of the verb; empty when nothing is.
QString objection(const Invocation &asked, const QCommandLineParser &parser)
{
    const auto verb =
        std::ranges::find_if(verbTable, [&](const Verb &each) { return asked.verb == each.name; });
    if (!asked.verb.isEmpty() && verb == verbTable.end())
        return u"There is no command '%1'."_s.arg(asked.verb);
    const QStringList allowed =
        asked.verb.isEmpty() ? QStringList() : QString(verb->options).split(u' ', Qt::SkipEmptyParts);
    for (const QString &option : {u"json"_s, u"csv"_s, u"all"_s, u"undo"_s}) {
        if (parser.isSet(option) && !allowed.contains(option))
            return u"--%1 means nothing here."_s.arg(option);
    }
    if (parser.isSet(u"json"_s) && parser.isSet(u"csv"_s))
        return u"--json and --csv exclude each other."_s;
    if (parser.isSet(u"json"_s) && parser.isSet(u"undo"_s))
        return u"--json and --undo exclude each other."_s;
    if (asked.verb.isEmpty())
        return {};
    if (!asked.secret.isEmpty())
        return u"--store-secret stands alone."_s;
    if (asked.arguments.size() < verb->fewest)
        return u"'%1' takes %2."_s.arg(verb->name, verb->usage);
    if (asked.arguments.size() > verb->most)
        return u"Unexpected argument '%1'."_s.arg(asked.arguments[verb->most]);
    if (verb->name == "autostart"_L1 &&
        !QStringList{QString(), u"on"_s, u"off"_s}.contains(asked.arguments.value(0)))
        return u"'autostart' takes on or off."_s;
    return {};
}

} // namespace

std::expected<Invocation, QString> CommandLine::parse(const QStringList &words)
{
    const Options options;
    QCommandLineParser parser;
    options.addTo(parser);
    if (!parser.parse(QStringList(u"sayvane"_s) + words))
        return std::unexpected(parser.errorText());
    Invocation asked{.verb = parser.positionalArguments().value(0),
                     .arguments = parser.positionalArguments().mid(1),
                     .profile = parser.value(options.profile),
                     .secret = parser.value(options.secret),
                     .all = parser.isSet(options.all),
                     .undo = parser.isSet(options.undo),
                     .help = parser.isSet(options.help),
                     .version = parser.isSet(options.version)};
    if (parser.isSet(options.json))
        asked.output = Invocation::Output::json;
    else if (parser.isSet(options.csv))
        asked.output = Invocation::Output::csv;
    const auto address = Prefs::validAccountBaseURL(parser.value(options.service));
    if (!address)
        return std::unexpected(u"--service takes an https address without query or fragment."_s);
    asked.service = *address;
    if (const QString wrong = objection(asked, parser); !wrong.isEmpty())
        return std::unexpected(wrong);
    return asked;
}

QString CommandLine::help()
{
    QString text = u"Usage: sayvane [options] [command]\n"
                   "Dictation in any application: tap the shortcut, speak, tap again.\n\n"
                   "Without a command Sayvane starts; where it runs already, it shows its window.\n\n"
                   "Commands:\n"_s;
    for (const Verb &verb : verbTable)
        text += u"  %1%2\n"_s.arg((verb.name + u' ' + verb.usage).leftJustified(24), verb.purpose);
    QCommandLineParser parser;
    Options().addTo(parser);
    const QString options = parser.helpText();
    return text + u'\n' + options.mid(options.indexOf("Options:"_L1)) +
           u"\nExit status: 0 done, 1 failed, 64 wrong command line, 66 unreadable file, 69 not running, "
           "71 no display, 75 in use by another command.\n"_s;
}

QStringList CommandLine::verbs()
{
    QStringList names;
    for (const Verb &verb : verbTable)
        names.append(verb.name);
    return names;
}
