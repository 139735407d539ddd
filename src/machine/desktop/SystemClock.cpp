#include "machine/desktop/SystemClock.h"

#include <QDateTime>
#include <QList>
#include <QTimer>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 day = 24 * 60 * 60;
constexpr qint64 week = 7 * day;
constexpr qint64 year = 366 * day;

qint64 offsetAt(qint64 moment)
{
    const time_t seconds = moment;
    tm local{};
    localtime_r(&seconds, &local);
    return local.tm_gmtoff;
}

/// Whether the zone and the C library tell the same time from two years ago to a year ahead.
bool agrees(const QTimeZone &zone, qint64 now)
{
    if (!zone.isValid())
        return false;
    QList<qint64> moments;
    for (qint64 moment = now - 2 * year; moment < now + year; moment += week)
        moments.append(moment);
    const auto changes = zone.transitions(QDateTime::fromSecsSinceEpoch(moments.first(), Qt::UTC),
                                          QDateTime::fromSecsSinceEpoch(moments.last(), Qt::UTC));
    for (const QTimeZone::OffsetData &change : changes)
        moments += {change.atUtc.toSecsSinceEpoch() - 1, change.atUtc.toSecsSinceEpoch()};
    return std::ranges::all_of(moments, [&](qint64 moment) {
        return zone.offsetFromUtc(QDateTime::fromSecsSinceEpoch(moment, Qt::UTC)) == offsetAt(moment);
    });
}

/// The name of the zone whose file is at the path; empty where the path says nothing of it.
QByteArray nameIn(QByteArray path)
{
    if (path.startsWith(':'))
        path.remove(0, 1);
    static const QByteArray database = "/zoneinfo/";
    const qsizetype found = path.lastIndexOf(database);
    return found < 0 ? QByteArray() : path.sliced(found + database.size());
}

/// The first moment at which the clocks have changed between the two, which are less than a change apart.
qint64 changeBetween(qint64 before, qint64 after)
{
    while (after - before > 1) {
        const qint64 middle = before + (after - before) / 2;
        (offsetAt(middle) == offsetAt(before) ? before : after) = middle;
    }
    return after;
}

/// The moments within a year at which the clocks change.
QList<qint64> changesAfter(qint64 now)
{
    QList<qint64> changes;
    for (qint64 moment = now; moment < now + year; moment += day) {
        if (offsetAt(moment) != offsetAt(moment + day))
            changes.append(changeBetween(moment, moment + day));
    }
    return changes;
}

QByteArray clockText(qint64 seconds)
{
    const qint64 whole = std::abs(seconds);
    return (seconds < 0 ? "-" : "") + QByteArray::number(whole / 3600) + ':' +
           QByteArray::number(whole / 60 % 60) + ':' + QByteArray::number(whole % 60);
}

/// What may be the date of a change in a rule of the environment variable TZ (POSIX.1-2017, 8.3): that
/// weekday of the month, counted from its first or its last, or so many hours after the weekday before.
QList<QByteArray> datesOf(qint64 change)
{
    QList<QByteArray> dates;
    const qint64 wallTime = change + offsetAt(change - 1);
    for (const int daysBefore : {0, 1}) {
        const QDateTime local = QDateTime::fromSecsSinceEpoch(wallTime - daysBefore * day, Qt::UTC);
        const QDate date = local.date();
        const qint64 time = daysBefore * day + local.time().msecsSinceStartOfDay() / 1000;
        QList<int> weeks{(date.day() - 1) / 7 + 1};
        if (date.day() + 7 > date.daysInMonth())
            weeks.prepend(5); // the last
        for (const int weekOfMonth : weeks)
            dates.append(",M" + QByteArray::number(date.month()) + '.' + QByteArray::number(weekOfMonth) +
                         '.' + QByteArray::number(date.dayOfWeek() % 7) + '/' + clockText(time));
    }
    return dates;
}

/// The zone that does every year what the C library does in the coming one.
QTimeZone observed(qint64 now)
{
    const auto fixed = [&] {
        const QTimeZone zone(static_cast<int>(offsetAt(now)));
        return zone.isValid() ? zone : QTimeZone::utc();
    };
    QList<qint64> changes = changesAfter(now);
    if (changes.size() != 2)
        return fixed();
    if (offsetAt(changes.first()) < offsetAt(changes.last()))
        changes.swapItemsAt(0, 1); // to summer time and back
    const QByteArray offsets = "<winter>" + clockText(-offsetAt(changes.last())) + "<summer>" +
                               clockText(-offsetAt(changes.first()));
    for (const QByteArray &first : datesOf(changes.first())) {
        for (const QByteArray &last : datesOf(changes.last())) {
            if (const QTimeZone zone(offsets + first + last); agrees(zone, now))
                return zone;
        }
    }
    return fixed();
}

QTimeZone chosen()
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    if (const QTimeZone system = QTimeZone::systemTimeZone(); agrees(system, now))
        return system;
    if (const QTimeZone named(nameIn(qgetenv("TZ"))); agrees(named, now))
        return named;
    return observed(now);
}

using std::chrono::milliseconds;

SystemClock::Duration steadyNow()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

int millisecondsOf(SystemClock::Duration duration)
{
    const milliseconds rounded = std::chrono::ceil<milliseconds>(duration);
    return static_cast<int>(std::clamp<int64_t>(rounded.count(), 0, std::numeric_limits<int>::max()));
}

SystemClock::Duration instantAfter(SystemClock::Duration delay)
{
    const SystemClock::Duration now = steadyNow();
    return delay > SystemClock::Duration::max() - now ? SystemClock::Duration::max() : now + delay;
}

/// Rings once at an instant. QTimer counts up to 24 days in whole milliseconds, so it is wound again
/// until the instant has come.
class OneShot final : public Timer
{
public:
    OneShot(SystemClock::Duration delay, std::function<void()> call)
        : m_due(instantAfter(delay)),
          m_call(std::move(call))
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { ring(); });
        m_timer.start(millisecondsOf(delay));
    }

private:
    void ring()
    {
        const SystemClock::Duration left = m_due - steadyNow();
        if (left > SystemClock::Duration::zero()) {
            m_timer.start(millisecondsOf(left));
            return;
        }
        const std::function<void()> call = std::move(m_call);
        call(); // may destroy this timer
    }

    SystemClock::Duration m_due;
    std::function<void()> m_call;
    QTimer m_timer;
};

/// Rings every period.
class Repeating final : public Timer
{
public:
    Repeating(SystemClock::Duration period, std::function<void()> call)
        : m_call(std::make_shared<std::function<void()>>(std::move(call)))
    {
        m_timer.setTimerType(period >= std::chrono::seconds(1) ? Qt::CoarseTimer : Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            const auto kept = m_call; // the call may destroy this timer
            (*kept)();
        });
        m_timer.start(std::max(1, millisecondsOf(period)));
    }

private:
    std::shared_ptr<std::function<void()>> m_call;
    QTimer m_timer;
};

} // namespace

const QTimeZone &LocalZone::current()
{
    // An empty variable means UTC, and none the machine's zone.
    const QByteArray variable = qEnvironmentVariableIsSet("TZ") ? '=' + qgetenv("TZ") : QByteArray();
    struct stat file = {};
    stat("/etc/localtime", &file);
    const bool isSame = variable == m_variable && file.st_dev == m_file.st_dev &&
                        file.st_ino == m_file.st_ino && file.st_mtim.tv_sec == m_file.st_mtim.tv_sec &&
                        file.st_mtim.tv_nsec == m_file.st_mtim.tv_nsec;
    if (!m_zone.isValid() || !isSame) {
        tzset();
        m_zone = chosen();
        m_variable = variable;
        m_file = file;
    }
    return m_zone;
}

QDateTime SystemClock::now() const
{
    return QDateTime::currentDateTimeUtc();
}

QTimeZone SystemClock::timeZone() const
{
    return m_zone.current();
}

Clock::Duration SystemClock::monotonic() const
{
    return steadyNow();
}

std::unique_ptr<Timer> SystemClock::after(Duration delay, std::function<void()> call)
{
    return std::make_unique<OneShot>(delay, std::move(call));
}

std::unique_ptr<Timer> SystemClock::every(Duration period, std::function<void()> call)
{
    return std::make_unique<Repeating>(period, std::move(call));
}
