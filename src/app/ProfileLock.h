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

    /// Why it could not be had, in a sentence for the user.
    QString objection() const;
    /// Whether somebody else has it; otherwise the folder cannot be written.
    bool isTaken() const { return m_file.error() == QLockFile::LockFailedError; }

private:
    QLockFile m_file;
};
