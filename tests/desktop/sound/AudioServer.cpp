#include "desktop/sound/AudioServer.h"

#include <QTest>

#include <csignal>

#include <sys/prctl.h>

using namespace Qt::StringLiterals;

AudioServer::AudioServer(const QStringList &modules) : m_modules(modules)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"PULSE_RUNTIME_PATH"_s, m_folder.path());
    environment.insert(u"PULSE_STATE_PATH"_s, m_folder.path());
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(path(u"native"_s)));
    start();
}

AudioServer::~AudioServer()
{
    kill();
    qunsetenv("PULSE_SERVER");
}

void AudioServer::start()
{
    QStringList arguments{u"-n"_s, u"--daemonize=no"_s, u"--exit-idle-time=-1"_s, u"--use-pid-file=no"_s,
                          u"--disable-shm=yes"_s};
    for (const QString &module : m_modules)
        arguments << u"-L"_s << module;
    // The door comes last: whoever gets in finds everything in place.
    arguments << u"-L"_s << u"module-native-protocol-unix socket=%1"_s.arg(path(u"native"_s));
    m_process.start(u"pulseaudio"_s, arguments);
    QTRY_VERIFY2_WITH_TIMEOUT(control({u"info"_s}).contains("Server Name"), m_process.readAll().constData(), 10000);
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
    pactl.start(u"pactl"_s, command);
    pactl.waitForFinished();
    return pactl.readAllStandardOutput();
}
