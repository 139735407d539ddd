#include "desktop/sound/AudioServer.h"

#include <QTest>

#include <csignal>

#include <sys/prctl.h>

AudioServer::AudioServer(const QStringList &modules) : m_modules(modules)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PULSE_RUNTIME_PATH"), m_folder.path());
    environment.insert(QStringLiteral("PULSE_STATE_PATH"), m_folder.path());
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(path(QStringLiteral("native"))));
    start();
}

AudioServer::~AudioServer()
{
    kill();
    qunsetenv("PULSE_SERVER");
}

void AudioServer::start()
{
    QStringList arguments{QStringLiteral("-n"), QStringLiteral("--daemonize=no"), QStringLiteral("--exit-idle-time=-1"),
                          QStringLiteral("--use-pid-file=no"), QStringLiteral("--disable-shm=yes")};
    for (const QString &module : m_modules)
        arguments << QStringLiteral("-L") << module;
    // The door comes last: whoever gets in finds everything in place.
    arguments << QStringLiteral("-L")
              << QStringLiteral("module-native-protocol-unix socket=%1").arg(path(QStringLiteral("native")));
    m_process.start(QStringLiteral("pulseaudio"), arguments);
    QTRY_VERIFY2_WITH_TIMEOUT(control({QStringLiteral("info")}).contains("Server Name"),
                              m_process.readAll().constData(), 10000);
}

void AudioServer::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

void AudioServer::halt() const
{
    ::kill(static_cast<pid_t>(m_process.processId()), SIGSTOP);
}

void AudioServer::goOn() const
{
    ::kill(static_cast<pid_t>(m_process.processId()), SIGCONT);
}

QByteArray AudioServer::control(const QStringList &command) const
{
    QProcess pactl;
    pactl.start(QStringLiteral("pactl"), command);
    pactl.waitForFinished();
    return pactl.readAllStandardOutput();
}
