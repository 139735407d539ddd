#pragma once

#include <QString>
#include <QTemporaryFile>

#include <expected>
#include <memory>

/// A recording in the form that the services take: WAV, one channel, 16 bit, 16 kHz.
class SpokenFile
{
public:
    struct Refusal
    {
        QString sentence; ///< for the user
        int status;       ///< the command's exit code
    };
    /// The file itself where it has that form already, else a copy of what it says: of all that libsndfile
    /// reads, 13 minutes at most, which is as much as a service takes. `-` is standard input, 200 MB at most.
    static std::expected<SpokenFile, Refusal> of(const QString &path);

    const QString &path() const { return m_path; }

private:
    QString m_path;
    std::unique_ptr<QTemporaryFile> m_copy; // deleted with this object
};
