#pragma once

#include "program/Host.h"
#include "program/ProfileLock.h"

#include <expected>
#include <memory>

struct CommandContext;

/// The program's own objects in the hands of a command, while the program itself does not run: nobody
/// else writes the profile meanwhile.
class OfflineProgram
{
public:
    /// None, with a sentence for the user, when another process is at work on the profile.
    static std::expected<std::unique_ptr<OfflineProgram>, QString> take(const CommandContext &context);

    Host &host() { return m_host; }

private:
    OfflineProgram(std::unique_ptr<ProfileLock> lock, Platform &machine, const QString &service)
        : m_lock(std::move(lock)),
          m_host(machine, service)
    {
    }

    std::unique_ptr<ProfileLock> m_lock;
    Host m_host;
};
