#pragma once

#include "history/Dictation.h"

#include <QAbstractListModel>
#include <QCoreApplication>
#include <QDate>
#include <QList>
#include <QString>
#include <QTimeZone>

/// The dictations of one day, in the order of the list they come from.
struct DayGroup
{
    QDate id;
    QString title; ///< "Today", "Yesterday", or such as "Sunday 1 March 2026"
    QList<Dictation> items;

    /// Groups in the order in which their days are first met; days are those of the time zone.
    static QList<DayGroup> groupsOf(const QList<Dictation> &records, const QDateTime &now,
                                    const QTimeZone &zone);

    /// Such as "9:05 am", whatever the user's locale.
    static QString timeText(const QDateTime &date, const QTimeZone &zone);

    Q_DECLARE_TR_FUNCTIONS(DayGroup)
};

/// The rows of the dictations list. A change tells only of the rows that came, went or look different, so
/// that the list stays where the user scrolled it.
class DictationRows : public QAbstractListModel
{
    Q_OBJECT
public:
    enum Role {
        dayRole = Qt::UserRole, ///< the title of its group
        timeRole,
        textRole,
        timingRole, ///< empty when it was not timed
        firstOfDayRole,
        lastOfDayRole,
    };

    void show(const QList<DayGroup> &groups, const QTimeZone &zone);

    /// The dictation in the row; none outside the list.
    const Dictation *at(int row) const;
    /// What identifies the dictation in the row, whatever comes and goes; empty outside the list.
    Q_INVOKABLE QString idAt(int row) const;
    /// The row of the dictation with that id; -1 where there is none.
    Q_INVOKABLE int rowOf(const QString &id) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    struct Row
    {
        Dictation dictation;
        QString day;
        bool firstOfDay = false;
        bool lastOfDay = false;

        bool operator==(const Row &) const = default;
    };
    bool changeTo(const QList<Row> &rows);

    QList<Row> m_rows;
    QTimeZone m_zone;
};
