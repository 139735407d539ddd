#pragma once

#include "history/DayWords.h"
#include "history/Dictation.h"
#include "history/FlowStats.h"
#include "history/UsageSummary.h"
#include "values/Provider.h"

#include <QByteArray>
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

    /// The figures as of now; `stats` are those of the last change.
    FlowStats computeStats() const;
    /// Consecutive days with a dictation, ending today or yesterday, by the calendar of that zone.
    int dayStreak(const QTimeZone &calendar) const;
    /// The words of so many days in a row, today's last; with less than 1, of today alone.
    QList<DayWords> wordsPerDay(int days) const;

    struct Usage
    {
        UsageSummary period; ///< from the given moment on
        UsageSummary allTime;
    };
    /// A dictation that does not tell its provider counts as made with the current one.
    Usage usage(Provider currentProvider, const QDateTime &since) const;
    /// What the dictation cost, in US dollars; nothing with the hosted service.
    static double estimatedCost(const Dictation &dictation, Provider currentProvider);

Q_SIGNALS:
    /// The records, and with them all that is computed of them.
    void recordsChanged();

private:
    void load();
    void save();
    void quarantineHistoryFile();
    void publish();

    Clock &m_clock;
    QString m_filePath;
    QList<Dictation> m_records;  // newest first
    QList<QByteArray> m_encoded; // of each record the form in the file; empty until the first save needs it
    FlowStats m_stats;
    bool m_savingBlocked = false;
};
