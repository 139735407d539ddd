#include "cli/OpenCommand.h"

#include "cli/CommandContext.h"
#include "cli/ExitCode.h"
#include "cli/Terminal.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QProcess>
#include <QThread>

#include <cerrno>
#include <csignal>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto startLimit = 20s;
constexpr auto pollPause = 50ms;

bool isAlive(qint64 process)
{
    return ::kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM;
}

} // namespace

int OpenCommand::run(const CommandContext &context)
{
    const QVariantList section{context.asked.arguments.value(0)};
    ControlClient::Answer answer = context.running.call(u"Open"_s, section);
    if (!answer && answer.error().kind == ControlClient::Error::Kind::notRunning) {
        QStringList words{u"--service"_s, context.asked.service};
        if (!context.asked.profile.isEmpty())
            words += {u"--profile"_s, context.asked.profile};
        qint64 process = 0;
        if (!QProcess::startDetached(QCoreApplication::applicationFilePath(), words, {}, &process))
            return Terminal::complain(u"Sayvane could not be started."_s, ExitCode::failed);
        for (const QDeadlineTimer limit(startLimit); !answer && isAlive(process) && !limit.hasExpired();) {
            QThread::msleep(pollPause.count());
            if (context.running.isServed())
                answer = context.running.call(u"Open"_s, section, startLimit);
        }
    }
    if (answer)
        return ExitCode::done;
    if (answer.error().kind == ControlClient::Error::Kind::notRunning)
        return Terminal::complain(u"Sayvane did not start."_s, ExitCode::failed);
    return Terminal::complain(answer.error().message, ExitCode::failed);
}
