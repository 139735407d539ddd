#include "machine/desktop/Guard.h"

#include <QByteArray>

#include <array>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

// The shell in the middle ends at once, so that nobody has to wait for the one that stays.
Guard::Guard(const QString &command)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return;
    QByteArray script =
        "(trap '' HUP INT TERM; read -r _ || { " + command.toUtf8() + "; }) >/dev/null 2>&1 <&3 3<&- &";
    QByteArray shell = "/bin/sh";
    QByteArray option = "-c";
    const std::array<char *, 4> arguments{shell.data(), option.data(), script.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], 3);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_t child = 0;
    if (posix_spawn(&child, shell.constData(), &actions, &attributes, arguments.data(), environ) == 0) {
        m_pipe = ends[1];
        waitpid(child, nullptr, 0);
    } else {
        close(ends[1]);
    }
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[0]);
}

Guard::~Guard()
{
    if (m_pipe < 0)
        return;
    [[maybe_unused]] const ssize_t told = write(m_pipe, "\n", 1);
    close(m_pipe);
}
