#pragma once

#include "history/Dictation.h"

#include <QByteArray>
#include <QList>
#include <QString>

class Clock;

/// The file of the history. It is used by one thread at a time, which waits for the disk.
///
/// A file that cannot be read is never overwritten: it is moved aside under a dated name, and when even
/// that fails, writing stays off until the next start. Every trouble is told in the log.
class HistoryDisk
{
public:
    HistoryDisk(const QString &filePath, const Clock &clock) : m_filePath(filePath), m_clock(clock) {}

    /// What the file holds, newest first; nothing where it cannot be understood or there is none. Makes the
    /// folder.
    QList<Dictation> load();

    /// Replaces the file by these records, which are on the disk when it returns true.
    bool save(const QList<Dictation> &records);

private:
    void quarantine();
    void encode(const QList<Dictation> &records);

    QString m_filePath;
    const Clock &m_clock;
    bool m_savingBlocked = false;
    QList<Dictation> m_saved; // as of the last save,
    QList<QByteArray>
        m_encoded; // and of each the form in the file: encoding all takes far longer than joining
};
