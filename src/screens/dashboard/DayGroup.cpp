#include "screens/dashboard/DayGroup.h"

#include "history/LocalDays.h"

#include <QHash>
#include <QLocale>

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
