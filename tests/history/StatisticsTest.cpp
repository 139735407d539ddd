#include "history/HistoryStore.h"
#include "support/FakeMachine.h"

#include <QTest>

using namespace Qt::StringLiterals;

/// The figures that a history comes to, wherever its user is.
class StatisticsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsByTheCalendarOfTheUser_data();
    void countsByTheCalendarOfTheUser();
    void addsUpTheFigures();
    void followsTheUserAbroad();
    void estimatesTheCost_data();
    void estimatesTheCost();
    void sumsUpAPeriod();
};

namespace {

/// A history whose clock stands at a local time such as "2026-03-01T09:15:42", in that zone.
struct Fixture
{
    Fixture(const QByteArray &zone, const QString &now)
    {
        clock.zone = QTimeZone(zone);
        clock.jumpTo(moment(now));
    }

    QDateTime moment(const QString &localTime) const
    {
        QDateTime date = QDateTime::fromString(localTime, Qt::ISODate);
        if (date.timeSpec() == Qt::LocalTime)
            date.setTimeZone(clock.zone);
        return date.toUTC();
    }
    /// Words in the last days, the oldest first, such as "28:1 1:5", each under the day of the month on which
    /// its first moment falls.
    QString words(int days) const
    {
        QStringList words;
        for (const DayWords &day : store.wordsPerDay(days)) {
            if (day.date.addMSecs(-1).date() == day.date.date())
                words.append(u"not the first moment"_s);
            words.append(u"%1:%2"_s.arg(day.date.date().day()).arg(day.words));
        }
        return words.join(u' ');
    }

    VirtualClock clock;
    FakeFolders folders;
    FakeBackground background;
    HistoryStore store{folders, clock, background};
};

} // namespace

void StatisticsTest::countsByTheCalendarOfTheUser_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("now");
    QTest::addColumn<QString>("records"); // of one word each
    QTest::addColumn<int>("streak");
    QTest::addColumn<QString>("words"); // of four days
    const auto row = [](const char *name, const QByteArray &zone, const QString &now, const QString &records,
                        int streak,
                        const QString &words) { QTest::newRow(name) << zone << now << records << streak << words; };
    const QByteArray utc = "UTC";
    const QString noon = u"2026-03-02T12:00:00"_s;
    row("over the end of a month", utc, noon, u"2026-03-02T08:00:00 2026-03-01T23:59:59 2026-02-28T00:00:00"_s, 3,
        u"27:0 28:1 1:1 2:1"_s);
    row("a leap year", utc, u"2028-03-01T00:00:00"_s, u"2028-02-29T00:00:00 2028-02-28T23:59:59"_s, 2,
        u"27:0 28:1 29:1 1:0"_s);
    row("over new year", "Asia/Kolkata", u"2026-01-01T00:00:00"_s, u"2025-12-31T23:59:59 2026-01-01T00:00:00"_s, 2,
        u"29:0 30:0 31:1 1:1"_s);
    row("up to yesterday", utc, noon, u"2026-03-01T08:00:00 2026-02-28T08:00:00 2026-02-28T08:00:01"_s, 2,
        u"27:0 28:2 1:1 2:0"_s);
    row("up to the day before yesterday", utc, noon, u"2026-02-28T08:00:00"_s, 0, u"27:0 28:1 1:0 2:0"_s);
    row("a gap yesterday", utc, noon, u"2026-03-02T08:00:00 2026-02-28T08:00:00"_s, 1, u"27:0 28:1 1:0 2:1"_s);
    row("from tomorrow, as after a clock change", utc, noon, u"2026-03-03T00:00:00"_s, 0, u"27:0 28:0 1:0 2:0"_s);
    row("nothing", "Asia/Kolkata", noon, {}, 0, u"27:0 28:0 1:0 2:0"_s);
    // London leaps from 1 to 2 o'clock on 29 March 2026 and falls back on 25 October.
    row("a day of 23 hours", "Europe/London", u"2026-03-30T00:10:00"_s,
        u"2026-03-30T00:00:00 2026-03-29T23:59:59 2026-03-29T01:00:00Z 2026-03-28T23:55:00"_s, 3,
        u"27:0 28:1 29:2 30:1"_s);
    row("a day of 25 hours", "Europe/London", u"2026-10-26T00:10:00"_s,
        u"2026-10-26T00:05:00 2026-10-25T23:55:00 2026-10-24T23:55:00"_s, 3, u"23:0 24:1 25:1 26:1"_s);
    row("half an hour of difference", "Australia/Lord_Howe", u"2026-04-06T00:00:00"_s,
        u"2026-04-05T23:59:59 2026-04-05T00:00:00 2026-04-04T23:59:59"_s, 2, u"3:0 4:1 5:2 6:0"_s);
    // In Sao Paulo 4 November 2018 began at 1 o'clock.
    row("a day without midnight", "America/Sao_Paulo", u"2018-11-04T12:00:00"_s,
        u"2018-11-04T01:00:00 2018-11-03T23:59:59"_s, 2, u"1:0 2:0 3:1 4:1"_s);
    // In Saint John's the clocks of 7 November 2010 went back to the day before at one minute past midnight.
    row("midnight twice", "America/St_Johns", u"2010-11-07T12:00:00"_s,
        u"2010-11-07T02:30:30Z 2010-11-07T03:00:00Z 2010-11-07T03:30:00Z"_s, 2, u"4:0 5:0 6:1 7:2"_s);
    // Samoa went over the date line and had no 30 December 2011.
    row("a zone that nobody knows", "Nowhere/Land", noon, u"2026-03-01T08:00:00 2026-02-28T08:00:00"_s, 2,
        u"27:0 28:1 1:1 2:0"_s);
    row("a day that never was", "Pacific/Apia", u"2011-12-31T12:00:00"_s,
        u"2011-12-31T00:00:00 2011-12-29T23:59:59 2011-12-28T12:00:00"_s, 3, u"28:1 29:1 31:1"_s);
}

void StatisticsTest::countsByTheCalendarOfTheUser()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, now);
    QFETCH(QString, records);
    QFETCH(QString, words);
    Fixture m(zone, now);
    for (const QString &time : records.split(u' ', Qt::SkipEmptyParts))
        m.store.append({.date = m.moment(time), .wordCount = 1});
    QTEST(m.store.stats().dayStreak, "streak");
    QCOMPARE(m.store.dayStreak(m.clock.zone), m.store.stats().dayStreak);
    QCOMPARE(m.words(4), words);
    QCOMPARE(m.words(-3), words.split(u' ').last());
    QCOMPARE(m.store.wordsPerDay(1).first().words, m.store.stats().wordsToday);
    QCOMPARE(m.store.stats().dictationsToday, m.store.stats().wordsToday);
}

void StatisticsTest::addsUpTheFigures()
{
    Fixture m("UTC", u"2026-03-10T12:00:00"_s);
    const QDateTime now = m.clock.now();
    m.store.append({.date = now, .durationSeconds = 30, .wordCount = 60, .transcribeMs = 900, .cleanupMs = 100});
    m.store.append({.date = now, .durationSeconds = 0, .wordCount = 1000});
    m.store.append({.date = now, .durationSeconds = -5, .wordCount = 5, .cleanupMs = 70000});
    m.store.append({.date = now.addDays(-40), .durationSeconds = 15, .wordCount = 30, .transcribeMs = 1001});
    const FlowStats expected{.totalWords = 1095,
                             .averageWordsPerMinute = 120,
                             .dayStreak = 1,
                             .wordsToday = 1065,
                             .dictationsToday = 3,
                             .averageTimeToPasteMs = 1000};
    QVERIFY(m.store.stats() == expected);
    m.store.clear();
    QVERIFY(m.store.stats() == FlowStats());
}

void StatisticsTest::followsTheUserAbroad()
{
    Fixture m("UTC", u"2026-03-10T00:30:00"_s);
    m.store.append({.date = m.clock.now().addSecs(-3600), .wordCount = 7});
    QCOMPARE(m.store.stats().dictationsToday, 0);
    m.clock.zone = QTimeZone("Asia/Kolkata");
    QCOMPARE(m.store.computeStats().dictationsToday, 1);
    QCOMPARE(m.words(2), u"9:0 10:7"_s);
    m.clock.zone = QTimeZone("America/New_York");
    QCOMPARE(m.words(2), u"8:0 9:7"_s);
    m.clock.advance(std::chrono::hours(24)); // and a day goes by
    QCOMPARE(m.words(2), u"9:7 10:0"_s);
    QCOMPARE(m.store.computeStats().dayStreak, 1);
}

void StatisticsTest::estimatesTheCost_data()
{
    QTest::addColumn<Dictation>("dictation");
    QTest::addColumn<double>("asGroq"); // with that provider chosen
    QTest::addColumn<double>("asOpenAI");
    QTest::addColumn<double>("asService");
    const auto row = [](const char *name, Dictation dictation, double asGroq, double asOpenAI, double asService) {
        dictation.durationSeconds = 1800;
        dictation.wordCount = 100;
        QTest::newRow(name) << dictation << asGroq << asOpenAI << asService;
    };
    const double cleanup = 0.000144; // with either default model
    const std::optional<QString> raw = u"um"_s;
    row("the service", {.rawText = raw, .providerRaw = u"sayvane"_s}, 0, 0, 0);
    row("unknown, not cleaned up", {}, 0.02, 0.09, 0);
    row("unrecognised, cleaned up", {.rawText = raw, .providerRaw = u"Groq"_s}, 0.02 + cleanup, 0.09 + cleanup, 0);
    row("groq with its models",
        {.providerRaw = u"groq"_s, .transcriptionModel = u"whisper-large-v3"_s, .chatModel = u"openai/gpt-oss-20b"_s},
        0.0555 + 0.000072, 0.0555 + 0.000072, 0.0555 + 0.000072);
    row("openai with a model unpriced", {.providerRaw = u"openai"_s, .transcriptionModel = u"x"_s, .chatModel = u"y"_s},
        0.09 + cleanup, 0.09 + cleanup, 0.09 + cleanup);
}

void StatisticsTest::estimatesTheCost()
{
    QFETCH(Dictation, dictation);
    QTEST(HistoryStore::estimatedCost(dictation, Provider::groq), "asGroq");
    QTEST(HistoryStore::estimatedCost(dictation, Provider::openai), "asOpenAI");
    QTEST(HistoryStore::estimatedCost(dictation, Provider::sayvane), "asService");
}

void StatisticsTest::sumsUpAPeriod()
{
    Fixture m("America/Sao_Paulo", u"2026-03-10T12:00:00"_s);
    const QDateTime month(QDate(2026, 3, 1), QTime(0, 0), m.clock.zone);
    m.store.append({.date = month.toUTC().addSecs(-1), .durationSeconds = 3600, .providerRaw = u"groq"_s});
    m.store.append({.date = month.toUTC(), .durationSeconds = 1800});
    m.store.append({.date = month.toUTC().addDays(9), .durationSeconds = -5, .providerRaw = u"sayvane"_s});
    const auto usage = m.store.usage(Provider::openai, month);
    QVERIFY((usage.period == UsageSummary{2, 1800, 0.09}));
    QVERIFY((usage.allTime == UsageSummary{3, 5400, 0.04 + 0.09}));
    QVERIFY(m.store.usage(Provider::openai, month.addYears(1)).period == UsageSummary());
}

QTEST_GUILESS_MAIN(StatisticsTest)
#include "StatisticsTest.moc"
