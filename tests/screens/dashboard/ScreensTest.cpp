#include "cloud/account/AccountSession.h"
#include "cloud/account/Credentials.h"
#include "history/HistoryStore.h"
#include "preferences/Keychain.h"
#include "preferences/Prefs.h"
#include "screens/dashboard/DashboardNavigation.h"
#include "screens/dashboard/DashboardView.h"
#include "screens/dashboard/DictionaryView.h"
#include "screens/dashboard/InsightsView.h"
#include "screens/dashboard/StatsCard.h"
#include "support/FakeMachine.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// It is 09:15 UTC on Sunday 1 March 2026.
struct Fixture
{
    FakeMachine machine;
    Keychain keychain{machine.secrets};
    Prefs prefs{machine.defaults, u"https://service.test"_s};
    AccountSessionStore sessions{keychain};
    Credentials credentials{keychain, sessions};
    HistoryStore store{machine.folders, machine.clock, machine.background};
    DashboardNavigation navigation;
    DashboardView dashboard{{machine.clock, prefs, credentials, navigation}};
    InsightsView insights{store, prefs, machine.clock};

    void add(const QString &date, double seconds, qint64 words, const std::optional<QString> &provider = {})
    {
        store.append({.id = QUuid::createUuid(),
                      .date = QDateTime::fromString(date, Qt::ISODate),
                      .durationSeconds = seconds,
                      .wordCount = words,
                      .text = u"text"_s,
                      .transcribeMs = 1234,
                      .providerRaw = provider});
    }
    static QStringList texts(const QVariantList &figures)
    {
        QStringList texts;
        for (const QVariant &figure : figures)
            texts.append(figure.value<Figure>().value + u' ' + figure.value<Figure>().label);
        return texts;
    }
};

} // namespace

class ScreensTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void usageInWords_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<double>("cost");
        QTest::addColumn<QString>("minutes");
        QTest::addColumn<QString>("costText");
        QTest::newRow("nothing") << 0.0 << 0.0 << u"0.0 min"_s << u"$0.00"_s;
        QTest::newRow("halves as printf has them") << 255.0 << 0.005 << u"4.2 min"_s << u"$0.01"_s;
        QTest::newRow("a little") << 599.0 << 0.004 << u"10.0 min"_s << u"under $0.01"_s;
        QTest::newRow("halves away from zero") << 750.0 << 12.345 << u"13 min"_s << u"$12.35"_s;
        QTest::newRow("ten minutes") << 600.0 << 0.00000001 << u"10 min"_s << u"under $0.01"_s;
    }
    void usageInWords()
    {
        QFETCH(double, seconds);
        QFETCH(double, cost);
        QTEST(UsageCard::minutes({1, seconds, cost}), "minutes");
        QTEST(UsageCard::costText({1, seconds, cost}), "costText");
    }

    void insightsFollowHistoryAndProvider()
    {
        Fixture f;
        QCOMPARE(Fixture::texts(f.insights.figures()).last(), u"not yet Average time to paste"_s);
        f.add(u"2026-02-28T23:30:00Z"_s, 3600, 5000, u"groq"_s);
        f.add(u"2026-03-01T08:00:00Z"_s, 60, 1001);
        QCOMPARE(Fixture::texts(f.insights.figures()),
                 (QStringList{u"1,001 Words today"_s, u"1 Dictations today"_s, u"6,001 Total words"_s,
                              u"98 Average wpm"_s, u"2 Day streak"_s, u"1.2 s Average time to paste"_s}));
        QCOMPARE(Fixture::texts(f.insights.usage().monthFigures()),
                 (QStringList{u"1.0 min of audio sent"_s, u"1 dictation"_s}));
        QCOMPARE(f.insights.usage().included(), u"Included in your plan"_s);
        QCOMPARE(f.insights.usage().footnotes().size(), 1);

        QSignalSpy changed(&f.insights, &InsightsView::changed);
        f.prefs.provider.set(Provider::groq);
        QCOMPARE(changed.count(), 1);
        const UsageCard usage = f.insights.usage();
        QCOMPARE(Fixture::texts(usage.monthFigures()).last(), u"under $0.01 estimate"_s);
        QCOMPARE(Fixture::texts(usage.allTimeFigures()).mid(0, 2),
                 (QStringList{u"61 min of audio sent"_s, u"2 dictations"_s}));
        QCOMPARE(usage.included(), QString());
        QCOMPARE(usage.footnotes().first(), u"Estimated from published Groq rates and the audio and word counts "
                                            "held locally. Not a bill."_s);
        QCOMPARE(usage.footnotes().last(), u"Groq free tier: no charge within rate limits; add a card at "
                                           "https://console.groq.com/settings/billing only if you exceed them."_s);

        f.machine.clock.zone = QTimeZone("America/New_York"); // February still at 23:30 UTC, March at 08:00
        QCOMPARE(f.insights.monthStart().toUTC(), QDateTime(QDate(2026, 3, 1), QTime(5, 0), QTimeZone::utc()));
    }

    void chartEndsOnARoundNumber_data()
    {
        QTest::addColumn<int>("words");
        QTest::addColumn<QStringList>("marks");
        QTest::newRow("empty") << 0 << QStringList{u"0"_s, u"5"_s, u"10"_s};
        QTest::newRow("few") << 13 << QStringList{u"0"_s, u"5"_s, u"10"_s, u"15"_s};
        QTest::newRow("exact") << 400 << QStringList{u"0"_s, u"100"_s, u"200"_s, u"300"_s, u"400"_s};
        QTest::newRow("one more") << 401 << QStringList{u"0"_s, u"200"_s, u"400"_s, u"600"_s};
        QTest::newRow("thousands") << 3100 << QStringList{u"0"_s, u"1,000"_s, u"2,000"_s, u"3,000"_s, u"4,000"_s};
    }
    void chartEndsOnARoundNumber()
    {
        QFETCH(int, words);
        Fixture f;
        f.add(u"2026-03-01T08:00:00Z"_s, 60, words);
        const WordsChart chart = f.insights.chart();
        QStringList marks;
        for (const ChartMark &mark : chart.marks)
            marks.append(mark.label);
        QTEST(marks, "marks");
        QCOMPARE(chart.marks.last().height, 1.0);
        QCOMPARE(chart.bars.size(), 14);
        const QString label = chart.bars.first().label + u' ' + chart.bars.last().label;
        QCOMPARE(label, u"16 Feb 1 Mar"_s);
        QVERIFY(chart.bars.first().marked && !chart.bars.last().marked);
        QCOMPARE(chart.bars.last().height * marks.last().remove(u',').toDouble(), double(words));
    }

    void termsAreKeptInNormalForm()
    {
        Fixture f;
        f.prefs.vocabularyTyped.set(u"a,, b ,\nc"_s);
        DictionaryView view(f.prefs);
        QCOMPARE(view.terms(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
        const auto add = [&](const QString &term) {
            view.setNewTerm(term);
            view.add();
            return f.prefs.vocabularyTyped();
        };
        QCOMPARE(add(u" \n"_s), u"a,, b ,\nc"_s);
        QCOMPARE(view.newTerm(), u" \n"_s);
        QVERIFY(!view.canAdd());
        QCOMPARE(add(u" , "_s), u"a,, b ,\nc"_s);
        QCOMPARE(view.newTerm(), u" , "_s);
        QCOMPARE(add(u"B"_s), u"a,, b ,\nc"_s);
        QCOMPARE(view.newTerm(), QString());
        QCOMPARE(add(u" Acme, Inc "_s), u"a, b, c, Acme  Inc"_s);

        f.prefs.vocabularyTyped.set(u"b,x,a,b,B"_s); // changed elsewhere
        QCOMPARE(view.rows()->stringList(), (QStringList{u"b"_s, u"x"_s, u"a"_s, u"b"_s, u"B"_s}));
        view.remove(u"b"_s);
        QCOMPARE(f.prefs.vocabularyTyped(), u"x, a, B"_s);
        QCOMPARE(view.rows()->stringList(), view.terms());
        f.prefs.vocabularyTyped.set(u"x"_s);
        view.remove(u"x"_s);
        QCOMPARE(f.prefs.vocabularyTyped(), QString());
        QVERIFY(view.isEmpty());
    }

    void theBannerFollowsTheCredential()
    {
        Fixture f;
        QVERIFY(!f.dashboard.hasCredential());
        QCOMPARE(f.dashboard.bannerMessage(), u"Sign in under Settings to start dictating"_s);
        QCOMPARE(f.machine.clock.pendingTimers(), size_t{0});
        QSignalSpy days(&f.dashboard, &DashboardView::dayBegan);
        f.dashboard.setShown(true);
        QCOMPARE(days.count(), 1);
        f.machine.secrets.items.insert(u"sayvane_session"_s, "svs_token");
        QVERIFY(f.dashboard.hasCredential()); // as soon as the keyring tells of it

        f.dashboard.openSettings();
        QVERIFY(!f.prefs.advancedExpanded());
        f.navigation.setSection(DashboardSection::insights);
        f.prefs.provider.set(Provider::groq);
        f.machine.clock.advance(2s);
        QVERIFY(!f.dashboard.hasCredential());
        QCOMPARE(f.dashboard.bannerMessage(), u"Add a transcription key under Settings, Advanced"_s);
        f.dashboard.openSettings();
        QVERIFY(f.prefs.advancedExpanded());
        QCOMPARE(f.navigation.section().rawValue(), u"settings"_s);

        f.machine.clock.advance(15h);
        QCOMPARE(days.count(), 2);
        f.dashboard.setShown(false);
        QCOMPARE(f.machine.clock.pendingTimers(), size_t{0});
    }
};

QTEST_GUILESS_MAIN(ScreensTest)
#include "ScreensTest.moc"
