#pragma once

#include "base/Clock.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <expected>
#include <memory>

class Folders;

/// A recording that no dictation came to an end with.
struct LeftRecording
{
    QString id; ///< as its file is named
    QString path;
    QDateTime date;     ///< when its last sound was heard, UTC
    double seconds = 0; ///< how much was heard
};

/// Recordings whose words nobody has got: what the end of the program in the middle of a dictation left
/// behind, and, where the user wants it, what could not be transcribed. Kept aside for a week, and no longer.
///
/// A dictation that ends otherwise deletes its recording itself, which never comes here.
class LeftRecordings
{
public:
    static constexpr std::chrono::days keptFor{7};
    /// Less sound than this, in bytes, is not kept: half a second.
    static constexpr qint64 minimumSound = 16000;

    LeftRecordings(const Folders &folders, Clock &clock);

    /// Takes what lies in the temporary folder to the folder of left recordings, each with a header that
    /// tells its true length, and deletes what was kept for long enough. Only when no dictation can be
    /// under way. Gives how many were taken.
    int takeIn();

    /// Takes in one recording of a dictation that is over; false when it cannot be kept aside, and stays.
    bool takeIn(const QString &path);

    /// Deletes what grows too old from now on while the program runs.
    void watchAge();

    /// Newest first.
    QList<LeftRecording> all() const;

    /// The one whose id begins with the text; the error says that none or several do.
    std::expected<LeftRecording, QString> find(const QString &id) const;

    static bool remove(const LeftRecording &recording);

private:
    void removeOld();

    const Folders &m_folders;
    Clock &m_clock;
    std::unique_ptr<Timer> m_timer;
};
