#pragma once

#include <QString>

#include <chrono>

class Folders;

/// The right to write a profile's files: one process has it at a time, and a process that died has not.
///
/// It is a lock of the kernel on `instance.lock` (flock(2)), so it goes with its owner whatever the file says
/// and whatever the computer is called by then. The file itself stays.
class ProfileLock
{
public:
    /// Makes the profile's data folder where it is missing.
    explicit ProfileLock(const Folders &folders);
    ProfileLock(const ProfileLock &) = delete;
    ProfileLock &operator=(const ProfileLock &) = delete;
    ~ProfileLock();

    /// Waits that long for whoever has it.
    bool tryLock(std::chrono::milliseconds limit);

    /// Why it could not be had, in a sentence for the user.
    QString objection() const;
    /// Whether somebody else has it; otherwise the folder cannot be written.
    bool isTaken() const { return m_isTaken; }

private:
    bool tryOnce();

    QString m_path;
    int m_file = -1; // open while we have the lock
    bool m_isTaken = false;
};
