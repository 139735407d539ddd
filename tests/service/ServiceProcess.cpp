#include "ServiceProcess.h"

#include <QFile>
#include <QRegularExpression>

#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString program = QString::fromUtf8(SERVICE_PROGRAM);
constexpr int patienceMs = 30'000;
} // namespace

bool ServiceProcess::start(const QStringList &options)
{
    m_process.start(program, QStringList{u"serve"_s, u"--port"_s, u"0"_s, u"--data"_s, folder()} + options);
    const QByteArray line = nextLine();
    static const QRegularExpression ready(u"^listening on https://127\\.0\\.0\\.1:(\\d+) certificate (/.+)\n$"_s);
    const auto match = ready.match(QString::fromUtf8(line));
    m_port = match.captured(1).toUShort();
    return match.captured(2) == folder() + u"/certificate.pem"_s;
}

QByteArray ServiceProcess::nextLine()
{
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(patienceMs))
            return {};
    }
    return m_process.readLine();
}

void ServiceProcess::hangUp()
{
    ::kill(static_cast<pid_t>(m_process.processId()), SIGHUP);
}

int ServiceProcess::end()
{
    m_process.terminate();
    return m_process.waitForFinished(patienceMs) && m_process.exitStatus() == QProcess::NormalExit
               ? m_process.exitCode()
               : -1;
}

ServiceProcess::~ServiceProcess()
{
    if (isRunning() && end() < 0) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

ServiceProcess::Output ServiceProcess::run(const QStringList &arguments) const
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(patienceMs)) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

QByteArray ServiceProcess::session(int dailyMinutes, const QString &email) const
{
    return run({u"session"_s, u"--email"_s, email, u"--daily-minutes"_s, QString::number(dailyMinutes), u"--data"_s,
                folder()})
        .out.trimmed();
}

QSslCertificate ServiceProcess::certificate() const
{
    return QSslCertificate::fromPath(folder() + u"/certificate.pem"_s).value(0);
}
