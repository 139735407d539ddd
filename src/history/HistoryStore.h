#pragma once

#include "base/Provider.h"
#include "history/Dictation.h"
#include "history/FlowStats.h"
#include "history/HistoryDisk.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

class Background;
class Clock;
class Folders;

/// The newest dictations, mirrored to one JSON file that is replaced whole on every change.
///
/// The file is read and written beside the main thread. Until it is read there are no records; what changes
/// by then is done to them once they are there. No trouble with the file stops a dictation. With the store,
/// what was changed is on the disk.
class HistoryStore final : public QObject
{
    Q_OBJECT
public:
    /// More than this many records are not kept; a longer file is loaded whole.
    static constexpr qsizetype cap = 2000;

    HistoryStore(Folders &folders, Clock &clock, Background &background);
    ~HistoryStore() override;

    const QList<Dictation> &records() const { return m_records; }
    const FlowStats &stats() const { return m_stats; }

    /// `settled` is told once the record is on the disk, or the file could not be written. With the record on
    /// the disk the recording that it was made of is deleted.
    void append(const Dictation &dictation, const QString &recording = {},
                const std::function<void()> &settled = {});
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
    void adopt();
    void change(std::function<void()> change);
    void save(const QString &recording = {}, const std::function<void()> &settled = {});
    void publish();

    Clock &m_clock;
    Background &m_background;
    HistoryDisk m_disk;        // the background's alone, and
    QList<Dictation> m_loaded; // this until it is adopted
    bool m_isAdopted = false;
    QList<std::function<void()>> m_early; // changes before that
    QList<Dictation> m_records;           // newest first
    FlowStats m_stats;
};
