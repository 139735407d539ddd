#pragma once

#include "screens/dashboard/DictationRows.h"

#include <QObject>
#include <QString>
#include <QVariantList>

class Clock;
class Prefs;
class HistoryStore;
class Pasteboard;

/// The history as a list: searched, grouped by day, copied from and deleted from.
class DictationListView final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString greeting READ greeting CONSTANT)
    Q_PROPERTY(QVariantList figures READ figures NOTIFY changed)
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY changed)
    Q_PROPERTY(DictationRows *rows READ rows CONSTANT)
    Q_PROPERTY(bool hasRecords READ hasRecords NOTIFY changed)
    Q_PROPERTY(bool empty READ isEmpty NOTIFY changed)
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY changed)
    Q_PROPERTY(QString emptyHint READ emptyHint NOTIFY changed)
    Q_PROPERTY(QString clearTitle READ clearTitle NOTIFY changed)
    Q_PROPERTY(bool confirmingClear READ isConfirmingClear WRITE setConfirmingClear NOTIFY changed)
public:
    DictationListView(HistoryStore &store, const Prefs &prefs, Clock &clock, Pasteboard &pasteboard);

    QString greeting() const;
    QVariantList figures() const;

    QString search() const { return m_search; }
    void setSearch(const QString &search);
    /// The records whose text contains the trimmed search, compared without regard to case in the user's
    /// locale; all of them when it is empty.
    QList<Dictation> filtered() const;
    DictationRows *rows() { return &m_rows; }

    bool hasRecords() const;
    /// Whether there is nothing to list.
    bool isEmpty() const { return m_rows.rowCount() == 0; }
    QString emptyTitle() const;
    /// How to begin; empty unless there is no record at all.
    QString emptyHint() const;

    Q_INVOKABLE void copy(int row);
    Q_INVOKABLE void remove(int row);

    QString clearTitle() const;
    bool isConfirmingClear() const { return m_confirmingClear; }
    void setConfirmingClear(bool confirming);
    /// Deletes every record; the question whether to is answered with it.
    Q_INVOKABLE void clear();

    /// Lists afresh, such as when another day has begun.
    void refresh();

Q_SIGNALS:
    void changed();

private:
    HistoryStore &m_store;
    const Prefs &m_prefs;
    Clock &m_clock;
    Pasteboard &m_pasteboard;
    QString m_search;
    bool m_confirmingClear = false;
    DictationRows m_rows;
};
