#pragma once

#include <QProcess>
#include <QSslCertificate>
#include <QTemporaryDir>

/// The real program with a data folder of its own, ended with this object.
class ServiceProcess
{
public:
    /// Starts a server and waits until it says that it listens.
    bool start(const QStringList &options = {});
    /// Has it read its certificate again.
    void hangUp();
    /// Asks it to end; its exit code, or -1 when it does not end in time.
    int end();
    ~ServiceProcess();

    /// The next line on standard output, which it waits for; empty when none comes.
    QByteArray nextLine();

    /// Runs the program beside the server: exit code, standard output, standard error.
    struct Output
    {
        int exitCode = -1;
        QByteArray out;
        QByteArray error;
    };
    Output run(const QStringList &arguments) const;
    /// The token of a new session.
    QByteArray session(int dailyMinutes = 60, const QString &email = QStringLiteral("maren@example.com")) const;

    bool isRunning() const { return m_process.state() == QProcess::Running; }
    quint16 port() const { return m_port; }
    QSslCertificate certificate() const;
    QString folder() const { return m_folder.filePath(QStringLiteral("data")); }
    QByteArray log() { return m_log += m_process.readAllStandardError(); }

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    QByteArray m_log;
    quint16 m_port = 0;
};
