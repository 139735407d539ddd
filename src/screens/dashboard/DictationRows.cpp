#include "screens/dashboard/DictationRows.h"

#include "history/LocalDays.h"

#include <QHash>
#include <QLocale>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QLocale &british()
{
    static const QLocale locale(QLocale::English, QLocale::UnitedKingdom);
    return locale;
}

QString titleOf(const QDate &day, const QDate &today)
{
    if (day == today)
        return DayGroup::tr("Today");
    if (day == today.addDays(-1))
        return DayGroup::tr("Yesterday");
    return british().toString(day, u"dddd d MMMM yyyy"_s);
}

/// From this many separate changes on, building what is visible anew is cheaper.
constexpr int manyChanges = 64;

/// The stretches of rows for which the test holds, first to last.
template <typename Rows, typename Test>
QList<std::pair<int, int>> stretches(const Rows &rows, Test test)
{
    QList<std::pair<int, int>> found;
    for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
        if (!test(rows[i]))
            continue;
        if (!found.isEmpty() && found.last().second == i - 1)
            found.last().second = i;
        else
            found.append({i, i});
    }
    return found;
}

} // namespace

QString DayGroup::timeText(const QDateTime &date, const QTimeZone &zone)
{
    return british().toString(date.toTimeZone(zone).time(), u"h:mm a"_s).toLower();
}

QList<DayGroup> DayGroup::groupsOf(const QList<Dictation> &records, const QDateTime &now,
                                   const QTimeZone &zone)
{
    QList<DayGroup> groups;
    QHash<qint64, qsizetype> places;
    LocalDays days(zone);
    const QDate today = QDate::fromJulianDay(days.dayOf(now));
    for (const Dictation &record : records) {
        const qint64 day = days.dayOf(record.date);
        auto place = places.constFind(day);
        if (place == places.cend()) {
            place = places.insert(day, groups.size());
            const QDate date = QDate::fromJulianDay(day);
            groups.append({date, titleOf(date, today), {}});
        }
        groups[*place].items.append(record);
    }
    return groups;
}

void DictationRows::show(const QList<DayGroup> &groups, const QTimeZone &zone)
{
    QList<Row> rows;
    for (const DayGroup &group : groups)
        for (const Dictation &dictation : group.items)
            rows.append({dictation, group.title, &dictation == &group.items.first(),
                         &dictation == &group.items.last()});
    const bool sameZone = zone == m_zone;
    m_zone = zone;
    if (sameZone && changeTo(rows))
        return;
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

bool DictationRows::changeTo(const QList<Row> &rows)
{
    QSet<QUuid> before;
    QSet<QUuid> after;
    for (const Row &row : std::as_const(m_rows))
        before.insert(row.dictation.id);
    for (const Row &row : rows)
        after.insert(row.dictation.id);
    if (before.size() != m_rows.size() || after.size() != rows.size())
        return false; // rows that cannot be told apart

    const auto gone = stretches(m_rows, [&](const Row &row) { return !after.contains(row.dictation.id); });
    const auto come = stretches(rows, [&](const Row &row) { return !before.contains(row.dictation.id); });
    if (gone.size() + come.size() > manyChanges)
        return false;
    qsizetype kept = 0;
    for (const Row &row : rows) {
        if (!before.contains(row.dictation.id))
            continue;
        while (!after.contains(m_rows[kept].dictation.id))
            ++kept;
        if (m_rows[kept].dictation.id != row.dictation.id)
            return false; // another order
        ++kept;
    }

    for (auto it = gone.rbegin(); it != gone.rend(); ++it) {
        beginRemoveRows({}, it->first, it->second);
        m_rows.remove(it->first, it->second - it->first + 1);
        endRemoveRows();
    }
    for (const auto &[first, last] : come) {
        beginInsertRows({}, first, last);
        for (int i = first; i <= last; ++i)
            m_rows.insert(i, rows[i]);
        endInsertRows();
    }
    for (int i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i] == rows[i])
            continue;
        m_rows[i] = rows[i];
        Q_EMIT dataChanged(index(i), index(i));
    }
    return true;
}

const Dictation *DictationRows::at(int row) const
{
    return row >= 0 && row < m_rows.size() ? &m_rows[row].dictation : nullptr;
}

QString DictationRows::idAt(int row) const
{
    const Dictation *dictation = at(row);
    return dictation ? dictation->id.toString() : QString();
}

int DictationRows::rowOf(const QString &id) const
{
    const auto found = std::ranges::find(m_rows, QUuid(id), [](const Row &row) { return row.dictation.id; });
    return found == m_rows.cend() ? -1 : static_cast<int>(found - m_rows.cbegin());
}

int DictationRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant DictationRows::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row &row = m_rows[index.row()];
    switch (role) {
    case dayRole:
        return row.day;
    case timeRole:
        return DayGroup::timeText(row.dictation.date, m_zone);
    case textRole:
        return row.dictation.text;
    case timingRole:
        return row.dictation.timingSummary().value_or(QString());
    case firstOfDayRole:
        return row.firstOfDay;
    case lastOfDayRole:
        return row.lastOfDay;
    default:
        return {};
    }
}

QHash<int, QByteArray> DictationRows::roleNames() const
{
    return {{dayRole, "day"},
            {timeRole, "time"},
            {textRole, "transcript"},
            {timingRole, "timing"},
            {firstOfDayRole, "firstOfDay"},
            {lastOfDayRole, "lastOfDay"}};
}
