#include "app/FlowLog.h"
#include "app/Host.h"
#include "app/SecretCommand.h"
#include "platform/linux/LinuxMachine.h"
#include "platform/linux/QuitSignals.h"
#include "platform/linux/system/LogFormat.h"
#include "windows/Windows.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>

#include <cstdio>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int exitUsage = 64;
constexpr int exitFailure = 1;

int complain(const QString &message, int status)
{
    std::fprintf(stderr, "sayvane: %s\n", qPrintable(message));
    return status;
}

int storeSecret(SecretStore &secrets, const QString &account)
{
    QFile input;
    static constexpr qint64 longestSecret = 4096;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return complain(input.errorString(), exitFailure);
    const QString trouble = SecretCommand::store(secrets, account, input.read(longestSecret));
    return trouble.isEmpty() ? 0 : complain(trouble, exitFailure);
}

/// Only the program that stays needs a display.
std::unique_ptr<QCoreApplication> makeApplication(int &argc, char **argv, bool stays)
{
    if (!stays)
        return std::make_unique<QCoreApplication>(argc, argv);
    auto application = std::make_unique<QApplication>(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return application;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication::setApplicationName(u"sayvane"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(SAYVANE_VERSION));
    installLog();
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));

    QCommandLineParser options;
    options.setApplicationDescription(u"Dictation in any application: tap the shortcut, speak, tap again."_s);
    const QCommandLineOption help = options.addHelpOption();
    const QCommandLineOption version = options.addVersionOption();
    const QCommandLineOption profile(
        u"profile"_s, u"Keep settings, history and secrets apart under this name."_s, u"name"_s);
    const QCommandLineOption service(u"service"_s, u"The hosted service to dictate to, an https address."_s,
                                     u"address"_s, u"https://accounts.sayvane.app"_s);
    const QCommandLineOption secret(
        u"store-secret"_s,
        u"Store the secret read from standard input (nothing: remove it) and end: groq_api_key, "
        "openai_api_key or sayvane_session."_s,
        u"name"_s);
    options.addOptions({profile, service, secret});
    const bool understood = options.parse(arguments);
    const bool stays =
        understood && !options.isSet(help) && !options.isSet(version) && !options.isSet(secret);
    const std::unique_ptr<QCoreApplication> application = makeApplication(argc, argv, stays);
    QuitSignals quitSignals;
    if (!understood || !options.positionalArguments().isEmpty()) {
        const QString reason =
            options.errorText().isEmpty()
                ? u"Unexpected argument '%1'."_s.arg(options.positionalArguments().value(0))
                : options.errorText();
        return complain(reason + u" Try --help."_s, exitUsage);
    }
    options.process(*application);
    const auto address = Prefs::validAccountBaseURL(options.value(service));
    if (!address)
        return complain(u"--service takes an https address without query or fragment."_s, exitUsage);

    LinuxMachine machine(
        {.profile = options.value(profile),
         .soundsFolder = QCoreApplication::applicationDirPath() + u"/" SAYVANE_SOUNDS_FROM_BIN ""_s,
         .userAgent = "Sayvane/" SAYVANE_VERSION});
    if (options.isSet(secret))
        return storeSecret(machine.platform().secrets, options.value(secret));

    Host host(machine.platform(), *address);
    FlowLog::follow(host.flow());
    Windows windows(host, machine.platform(), {});
    QObject::connect(&quitSignals, &QuitSignals::received, application.get(), &QCoreApplication::quit);
    // The desktop session is over.
    QObject::connect(&machine.desktop().connection(), &X11Connection::lost, application.get(),
                     &QCoreApplication::quit);
    host.launch();
    if (host.prefs().isEnabled(PrefsKey::showDashboardOnLaunch))
        windows.openDashboard();
    return QCoreApplication::exec();
}
