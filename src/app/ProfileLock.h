#pragma once

#include <QLockFile>

#include <chrono>

class Folders;

/// The right to write a profile's files: one process has it at a time, and a process that died has not.
class ProfileLock
{
public:
    /// Makes the profile's data folder where it is missing.
    explicit ProfileLock(const Folders &folders);

    /// Waits that long for whoever has it.
    bool tryLock(std::chrono::milliseconds limit);

private:
    QLockFile m_file;
};
