#pragma once

#include "history/Dictation.h"
#include "history/FlowStats.h"

#include <QList>
#include <QObject>
#include <QString>

class Clock;
class Folders;

/// The newest dictations, mirrored to one JSON file that is replaced whole on every change.
///
/// A file that cannot be read is never overwritten: it is moved aside under a dated name, and when even
/// that fails, writing stays off until the next start. No trouble with the file stops a dictation.
class HistoryStore final : public QObject
{
    Q_OBJECT
public:
    /// More than this many records are not kept; a longer file is loaded whole.
    static constexpr qsizetype cap = 2000;

    HistoryStore(Folders &folders, Clock &clock);

    const QList<Dictation> &records() const { return m_records; }
    const FlowStats &stats() const { return m_stats; }

    void append(const Dictation &dictation);
    /// Removes every record with the dictation's id.
    void remove(const Dictation &dictation);
    void clear();

    FlowStats computeStats() const;

Q_SIGNALS:
    void recordsChanged();

private:
    void load();
    void save();
    void quarantineHistoryFile();
    void publish();

    Clock &m_clock;
    QString m_filePath;
    QList<Dictation> m_records; // newest first
    FlowStats m_stats;
    bool m_savingBlocked = false;
};
