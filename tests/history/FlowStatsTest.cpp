#include "history/FlowStats.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// Records at these local times, such as "2026-03-01T09:15:42".
QList<Dictation> recordsAt(const QString &localTimes, const QTimeZone &zone)
{
    QList<Dictation> records;
    for (const QString &time : localTimes.split(u' ', Qt::SkipEmptyParts)) {
        QDateTime date = QDateTime::fromString(time, Qt::ISODate);
        date.setTimeZone(zone);
        records.append({.date = date.toUTC(), .wordCount = 1});
    }
    return records;
}

QDateTime moment(const QString &localTime, const QTimeZone &zone)
{
    return recordsAt(localTime, zone).first().date;
}

} // namespace

class FlowStatsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsDaysInARow_data();
    void countsDaysInARow();
    void addsUpTheFigures();
    void theSameMomentIsAnotherDayElsewhere();
};

void FlowStatsTest::countsDaysInARow_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("now");
    QTest::addColumn<QString>("records");
    QTest::addColumn<int>("streak");
    QTest::addColumn<int>("today");
    const auto row = [](const char *name, const QByteArray &zone, const QString &now, const QString &records,
                        int streak, int today) { QTest::newRow(name) << zone << now << records << streak << today; };
    const QByteArray utc = "UTC";
    const QString noon = u"2026-03-10T12:00:00"_s;
    row("three days", utc, noon, u"2026-03-10T08:00:00 2026-03-09T23:59:59 2026-03-08T00:00:00"_s, 3, 1);
    row("up to yesterday", utc, noon, u"2026-03-09T08:00:00 2026-03-08T08:00:00"_s, 2, 0);
    row("up to the day before yesterday", utc, noon, u"2026-03-08T08:00:00"_s, 0, 0);
    row("a gap yesterday", utc, noon, u"2026-03-10T08:00:00 2026-03-08T08:00:00"_s, 1, 1);
    row("from tomorrow, as after a clock change", utc, noon, u"2026-03-11T00:00:00"_s, 0, 0);
    // London leaps from 1 to 2 o'clock on 29 March 2026 and falls back on 25 October.
    row("a day of 23 hours", "Europe/London", u"2026-03-30T00:10:00"_s,
        u"2026-03-30T00:05:00 2026-03-29T00:05:00 2026-03-28T23:55:00"_s, 3, 1);
    row("a day of 25 hours", "Europe/London", u"2026-10-26T00:10:00"_s,
        u"2026-10-26T00:05:00 2026-10-25T23:55:00 2026-10-24T23:55:00"_s, 3, 1);
    // In Sao Paulo 4 November 2018 had no midnight.
    row("a day without midnight", "America/Sao_Paulo", u"2018-11-04T12:00:00"_s,
        u"2018-11-04T01:00:00 2018-11-03T23:59:59"_s, 2, 1);
}

void FlowStatsTest::countsDaysInARow()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, now);
    QFETCH(QString, records);
    const QTimeZone local(zone);
    QVERIFY(local.isValid());
    const QList<Dictation> dictations = recordsAt(records, local);
    const FlowStats stats = FlowStats::compute(dictations, moment(now, local), local);
    QTEST(stats.dayStreak, "streak");
    QTEST(stats.dictationsToday, "today");
    QCOMPARE(stats.wordsToday, stats.dictationsToday);
}

void FlowStatsTest::addsUpTheFigures()
{
    const QTimeZone utc = QTimeZone::utc();
    const QDateTime now = moment(u"2026-03-10T12:00:00"_s, utc);
    const QList<Dictation> records{
        {.date = now, .durationSeconds = 30, .wordCount = 60, .transcribeMs = 900, .cleanupMs = 100},
        {.date = now, .durationSeconds = 0, .wordCount = 1000},
        {.date = now, .durationSeconds = -5, .wordCount = 5, .cleanupMs = 70000},
        {.date = now.addDays(-40), .durationSeconds = 15, .wordCount = 30, .transcribeMs = 1001},
    };
    const FlowStats expected{.totalWords = 1095,
                             .averageWordsPerMinute = 120,
                             .dayStreak = 1,
                             .wordsToday = 1065,
                             .dictationsToday = 3,
                             .averageTimeToPasteMs = 1000};
    QVERIFY(FlowStats::compute(records, now, utc) == expected);
}

void FlowStatsTest::theSameMomentIsAnotherDayElsewhere()
{
    const QList<Dictation> records = recordsAt(u"2026-03-09T23:30:00"_s, QTimeZone::utc());
    const QDateTime now = records.first().date.addSecs(3600);
    QCOMPARE(FlowStats::compute(records, now, QTimeZone::utc()).dictationsToday, 0);
    QCOMPARE(FlowStats::compute(records, now, QTimeZone("Asia/Kolkata")).dictationsToday, 1);
}

QTEST_APPLESS_MAIN(FlowStatsTest)
#include "FlowStatsTest.moc"
