#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

/// A real audio server of a test's own. It is the one that `PULSE_SERVER` names while it lives.
class AudioServer final
{
public:
    /// Starts a server that has these modules and nothing else, and waits until it answers.
    explicit AudioServer(const QStringList &modules);
    ~AudioServer();

    void start();
    void kill();

    /// The server hangs, and goes on.
    void halt() const;
    void goOn() const;

    /// Gives the server one command, in the words of pactl, and returns what it says.
    QByteArray control(const QStringList &command) const;

    /// A path in the server's own folder.
    QString path(const QString &name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
    QStringList m_modules;
    QProcess m_process;
};
