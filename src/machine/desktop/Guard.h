#pragma once

#include <QString>

/// Undoes in the desktop what a crash of the program would leave there: a small process that outlives us by
/// one command. It waits at the end of a pipe of ours.
class Guard
{
public:
    /// Runs the shell's command once this process has died; nothing where no process is to be had.
    explicit Guard(const QString &command);
    /// An orderly end: it is over without the command.
    ~Guard();
    Q_DISABLE_COPY_MOVE(Guard)

private:
    int m_pipe = -1;
};
