#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

/// A user at the private session's desk: starts programs, presses keys, speaks, looks.
class Desk
{
public:
    Desk();
    ~Desk();

    /// Starts the installed program, with a service beside it unless the arguments name another one; false
    /// when it does not say in time that it is ready.
    bool startSayvane(const QStringList &arguments = {}, const QByteArray &ready = "shortcut active");
    /// Asks the program to end, and waits.
    void stopSayvane();
    /// What the program has logged since it was started.
    QByteArray log() const;
    /// The newest stored dictations first.
    QJsonArray history() const;
    QString profileFolder() const;
    /// The recordings that exist.
    QStringList recordings() const;

    /// A program that stays open; it ends with the desk.
    QProcess *open(const QString &program, const QStringList &arguments);
    /// Waits for a window of that title and gives it the keyboard.
    bool focusWindow(const QString &title);
    /// Runs to the end; empty on failure.
    QByteArray run(const QString &program, const QStringList &arguments, const QByteArray &input = {}) const;

    void pressShortcut() const;
    void press(const QString &keys) const;
    /// Plays the clip into the microphone, to its end.
    void say(const QString &clip);
    void copy(const QString &type, const QByteArray &data);
    QByteArray clipboard(const QString &type) const;

    /// Taps, says the clip, taps again, and waits for the end of the dictation.
    bool dictate(const QString &clip);
    bool logsNext(const QByteArray &line);

    static QString transcriptOf(const QString &clip);
    static bool eventually(const std::function<bool()> &condition, int milliseconds = 15000);

private:
    std::unique_ptr<QProcess> m_sayvane;
    QString m_logPath;
    qsizetype m_read = 0;
    std::vector<std::unique_ptr<QProcess>> m_open;
};
