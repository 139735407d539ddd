#include "base/Platform.h"
#include "cli/CommandLine.h"
#include "cli/Commands.h"
#include "cli/Terminal.h"
#include "history/LeftRecordings.h"
#include "machine/LinuxMachine.h"
#include "machine/QuitSignals.h"
#include "machine/Wording.h"
#include "machine/desktop/HeldLibrary.h"
#include "machine/desktop/LogFormat.h"
#include "machine/desktop/XdgFolders.h"
#include "program/ProfileLock.h"
#include "program/SayvaneApp.h"
#include "screens/kit/ScreensLibrary.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QIcon>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// A command that works without the program has its files for seconds; one that waits for a person longer.
constexpr auto lockLimit = 5s;

std::unique_ptr<LinuxMachine> makeMachine(const QString &profile)
{
    return std::make_unique<LinuxMachine>(LinuxMachine::Settings{
        .profile = profile,
        .soundsFolder = QCoreApplication::applicationDirPath() + u"/" SAYVANE_SOUNDS_FROM_BIN ""_s,
        .userAgent = "Sayvane/" SAYVANE_VERSION});
}

int runCommand(const Invocation &asked)
{
    std::unique_ptr<LinuxMachine> machine;
    return Commands::run(
        {.asked = asked, .running = ControlClient(asked.profile), .machine = [&]() -> Platform & {
             if (!machine)
                 machine = makeMachine(asked.profile);
             return machine->platform();
         }});
}

QString iconsFolder()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + u"/" SAYVANE_ICONS_FROM_BIN ""_s);
}

/// For title bars and task bars, in the sizes that they ask for.
QIcon windowIcon()
{
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128})
        icon.addFile(iconsFolder() + u"/hicolor/%1x%1/apps/app.sayvane.Sayvane.png"_s.arg(size));
    return icon;
}

enum class Turn { ours, served, refused };

/// Whether this process is to be the program of the profile. Where it runs already, it is asked to show
/// itself.
Turn take(ProfileLock &lock, const ControlClient &running)
{
    const QDeadlineTimer limit(lockLimit);
    while (!lock.tryLock(0s)) {
        if (running.call(u"Open"_s, {QString()}))
            return Turn::served;
        if (limit.hasExpired() || !lock.isTaken())
            return Turn::refused;
        if (lock.tryLock(100ms))
            break;
    }
    return Turn::ours;
}

int runProgram(const Invocation &asked, QuitSignals &quitSignals)
{
    // Before anything of the profile is read: whoever has it may be writing.
    ProfileLock lock{XdgFolders(asked.profile)};
    switch (take(lock, ControlClient(asked.profile))) {
    case Turn::served:
        return ExitCode::done;
    case Turn::refused:
        return Terminal::complain(lock.objection(), lock.isTaken() ? ExitCode::inUse : ExitCode::failed);
    case Turn::ours:
        break;
    }
    const std::unique_ptr<LinuxMachine> machine = makeMachine(asked.profile);
    HeldLibrary screens(QCoreApplication::applicationDirPath() + u"/" SAYVANE_SCREENS_FROM_BIN ""_s);
    if (!screens.isThere())
        return Terminal::complain(u"A part of Sayvane is missing. Install it again."_s, ExitCode::failed);
    const auto makeWindowEngine = [&](Appearance &appearance, const Graphics &graphics) {
        QApplication::setWindowIcon(windowIcon()); // the first window is near
        const auto make =
            reinterpret_cast<decltype(&sayvaneMakeWindowEngine)>(screens.symbol("sayvaneMakeWindowEngine"));
        return std::unique_ptr<WindowEngine>(make ? make(appearance, graphics) : nullptr);
    };
    auto app =
        std::make_unique<SayvaneApp>(machine->platform(), asked.service, iconsFolder(), makeWindowEngine);
    QObject::connect(&quitSignals, &QuitSignals::received, qApp, &QCoreApplication::quit);
    // The desktop session is over. An X11 server that is Wayland's guest comes and goes.
    if (QGuiApplication::platformName() == "xcb"_L1)
        QObject::connect(&machine->x11(), &X11Connection::lost, qApp, &QCoreApplication::quit);
    app->launch(asked.profile);
    const int status = QCoreApplication::exec();
    app.reset();
    // At once what a next start would do: the temporary folder may not outlive the session.
    LeftRecordings(machine->platform().folders, machine->platform().clock).takeIn();
    return status;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication::setApplicationName(u"sayvane"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(SAYVANE_VERSION));
    installLog();
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    const auto asked = CommandLine::parse(words);
    if (!asked)
        return Terminal::complain(asked.error() + u" Try --help."_s, ExitCode::usage);
    if (!asked->stays()) {
        const QCoreApplication application(argc, argv);
        return runCommand(*asked);
    }
    if (const QString objection = LinuxMachine::displayObjection(); !objection.isEmpty())
        return Terminal::complain(objection, ExitCode::noDisplay);
    QuitSignals quitSignals;
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setDesktopFileName(u"app.sayvane.Sayvane"_s);
    Wording::install(application);
    quitSignals.listen();
    return runProgram(*asked, quitSignals);
}
