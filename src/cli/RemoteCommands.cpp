#include "cli/Commands.h"

#include "base/AccessibilityTrust.h"
#include "base/Platform.h"
#include "cli/Terminal.h"
#include "program/ProfileLock.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDeadlineTimer>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <csignal>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

QString statusText(const QVariantMap &status)
{
    QString text = status.value(u"state"_s).toString() + u'\n';
    for (auto fact = status.cbegin(); fact != status.cend(); ++fact) {
        if (fact.key() != "state"_L1)
            text += u"%1: %2\n"_s.arg(fact.key(), fact->toString());
    }
    return text;
}

constexpr auto answerLimit = 90s; // the service has a minute

QString textOf(const QList<QVariantMap> &checkups)
{
    QString text;
    for (const QVariantMap &each : checkups) {
        const bool works = each.value(u"works"_s).toBool();
        const QString means = each.value(u"means"_s).toString();
        text += u"%1 %2 %3\n"_s.arg(works ? u"ok"_s : u"no"_s,
                                    each.value(u"subject"_s).toString().leftJustified(11),
                                    means.isEmpty() ? u"-"_s : means);
        if (!works)
            text += u"   %1\n"_s.arg(each.value(u"advice"_s).toString());
    }
    return text;
}

int takeBack(const CommandContext &context)
{
    if (context.running.isServed())
        return Terminal::complain(u"Sayvane is running, and would put it back. Quit it first."_s,
                                  ExitCode::inUse);
    ProfileLock lock(context.machine().folders);
    if (!lock.tryLock(5s))
        return Terminal::complain(lock.objection(), ExitCode::inUse);
    const QStringList done = context.machine().trust.takeBack();
    return Terminal::print(done.isEmpty() ? u"There was nothing to take back.\n"_s : done.join(u'\n') + u'\n')
               ? ExitCode::done
               : ExitCode::failed;
}

/// Tells why the program did not do it.
int complain(const ControlClient::Error &error)
{
    return Terminal::complain(error.message, error.kind == ControlClient::Error::Kind::notRunning
                                                 ? ExitCode::notRunning
                                                 : ExitCode::failed);
}

int examine(const CommandContext &context)
{
    qDBusRegisterMetaType<QList<QVariantMap>>();
    const ControlClient::Answer answer = context.running.call(u"Doctor"_s, {}, answerLimit);
    if (!answer)
        return complain(answer.error());
    const auto checkups = qdbus_cast<QList<QVariantMap>>(answer->value(0));
    QJsonArray all;
    for (const QVariantMap &each : checkups)
        all.append(QJsonObject::fromVariantMap(each));
    const bool isTold = Terminal::print(context.asked.output == Invocation::Output::json
                                            ? QString::fromUtf8(QJsonDocument(all).toJson())
                                            : textOf(checkups));
    const bool allWork = std::ranges::all_of(
        checkups, [](const QVariantMap &each) { return each.value(u"works"_s).toBool(); });
    return isTold && allWork ? ExitCode::done : ExitCode::failed;
}

constexpr auto startLimit = 20s;
constexpr auto pollPause = 50ms;

bool isAlive(qint64 process)
{
    return ::kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM;
}

} // namespace

int Commands::remote(const CommandContext &context)
{
    if (context.asked.undo)
        return takeBack(context);
    if (context.asked.verb == "doctor"_L1)
        return examine(context);
    static const QHash<QString, QString> methods{
        {u"toggle"_s, u"Toggle"_s}, {u"start"_s, u"Start"_s},   {u"stop"_s, u"Stop"_s},
        {u"cancel"_s, u"Cancel"_s}, {u"status"_s, u"Status"_s}, {u"last"_s, u"LastTranscript"_s},
        {u"quit"_s, u"Quit"_s},
    };
    const QString verb = context.asked.verb;
    const ControlClient::Answer answer = context.running.call(methods.value(verb));
    if (!answer)
        return complain(answer.error());
    QString text;
    if (verb == "status"_L1) {
        const auto status = qdbus_cast<QVariantMap>(answer->value(0));
        text = context.asked.output == Invocation::Output::json
                   ? QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantMap(status)).toJson())
                   : statusText(status);
    } else if (verb == "last"_L1) {
        text = answer->value(0).toString() + u'\n';
    }
    return Terminal::print(text) ? ExitCode::done : ExitCode::failed;
}

int Commands::open(const CommandContext &context)
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
