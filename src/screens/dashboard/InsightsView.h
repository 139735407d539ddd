#pragma once

#include "screens/dashboard/UsageCard.h"
#include "screens/dashboard/WordsChart.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QVariantList>

class Clock;
class HistoryStore;
class Prefs;

/// The history in figures. Everything is derived when it is read, so a closed window costs nothing.
class InsightsView final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariantList figures READ figures NOTIFY changed)
    Q_PROPERTY(WordsChart chart READ chart NOTIFY changed)
    Q_PROPERTY(UsageCard usage READ usage NOTIFY changed)
public:
    InsightsView(HistoryStore &store, const Prefs &prefs, Clock &clock);

    QVariantList figures() const;
    /// Such as "1.2 s"; "not yet" before the first timed dictation.
    QString timeToPaste() const;
    /// The words of the last 14 days.
    WordsChart chart() const;
    UsageCard usage() const;
    /// The first moment of this month in the user's calendar.
    QDateTime monthStart() const;

    /// Announces that another day has begun.
    void refresh() { Q_EMIT changed(); }

Q_SIGNALS:
    void changed();

private:
    HistoryStore &m_store;
    const Prefs &m_prefs;
    Clock &m_clock;
};
