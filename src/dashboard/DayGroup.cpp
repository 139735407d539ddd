#include "dashboard/DayGroup.h"

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
        return u"Today"_s;
    if (day == today.addDays(-1))
        return u"Yesterday"_s;
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
    QHash<QDate, qsizetype> places;
    const QDate today = now.toTimeZone(zone).date();
    // Neighbours are mostly of one day, and asking the calendar costs far more than comparing.
    QDateTime dayBegins;
    QDateTime dayEnds;
    qsizetype place = -1;
    for (const Dictation &record : records) {
        if (place < 0 || record.date < dayBegins || record.date >= dayEnds) {
            const QDate day = record.date.toTimeZone(zone).date();
            dayBegins = day.startOfDay(zone).toUTC();
            dayEnds = day.addDays(1).startOfDay(zone).toUTC();
            place = places.value(day, -1);
            if (place < 0) {
                place = groups.size();
                places.insert(day, place);
                groups.append({day, titleOf(day, today), {}});
            }
        }
        groups[place].items.append(record);
    }
    return groups;
}
