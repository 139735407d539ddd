#include "labs/LabsAnswerMode.h"

#include "settings/Defaults.h"
#include "settings/Prefs.h"
#include "support/FakeMachine.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class LabsAnswerModeTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void endsAfterHalfAnHour();
    void survivesARestart();
    void readsTheStoredEnd_data();
    void readsTheStoredEnd();
    void aClockThatJumps_data();
    void aClockThatJumps();

private:
    struct Fixture
    {
        void restart()
        {
            mode.reset();
            mode = std::make_unique<LabsAnswerMode>(prefs, machine.clock);
        }
        bool isStored() const { return machine.defaults.values.contains(u"labsAnswerModeExpiresAt"_s); }

        FakeMachine machine;
        Defaults defaults{machine.defaults};
        Prefs prefs{defaults, u"https://service.test"_s};
        std::unique_ptr<LabsAnswerMode> mode = std::make_unique<LabsAnswerMode>(prefs, machine.clock);
    };
    std::unique_ptr<Fixture> m;
};

void LabsAnswerModeTest::endsAfterHalfAnHour()
{
    QSignalSpy changes(m->mode.get(), &LabsAnswerMode::enabledChanged);
    m->machine.clock.jumpTo(QDateTime(QDate(2001, 1, 2), QTime(0, 0), Qt::UTC));
    m->mode->setEnabled(true);
    QCOMPARE(m->machine.defaults.value(u"labsAnswerModeExpiresAt"_s).toDouble(), 86400.0 + 1800.0);
    m->machine.clock.advance(10min);
    m->mode->setEnabled(true); // renews nothing
    m->machine.clock.advance(20min - 1ms);
    QVERIFY(m->mode->enabled());
    m->machine.clock.advance(1ms);
    QVERIFY(!m->mode->enabled() && !m->isStored());
    QCOMPARE(changes.size(), 2);
    // Off and on again is a new half hour.
    m->mode->setEnabled(true);
    m->machine.clock.advance(10min);
    m->mode->setEnabled(false);
    QVERIFY(!m->isStored());
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
    m->mode->setEnabled(true);
    m->machine.clock.advance(30min - 1ms);
    QVERIFY(m->mode->enabled());
}

void LabsAnswerModeTest::survivesARestart()
{
    m->mode->setEnabled(true);
    m->mode.reset();
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
    m->machine.clock.advance(20min);
    m->restart();
    QVERIFY(m->mode->enabled());
    m->machine.clock.advance(10min - 1ms);
    QVERIFY(m->mode->enabled());
    m->machine.clock.advance(1ms);
    QVERIFY(!m->mode->enabled());
    m->mode->setEnabled(true);
    m->mode.reset();
    m->machine.clock.advance(31min);
    m->restart();
    QVERIFY(!m->mode->enabled() && !m->isStored());
}

void LabsAnswerModeTest::readsTheStoredEnd_data()
{
    QTest::addColumn<QJsonValue>("stored");
    QTest::addColumn<bool>("isOn");
    QTest::newRow("zero") << QJsonValue(0) << false;
    QTest::newRow("before all days") << QJsonValue(-5.5) << false;
    QTest::newRow("long past") << QJsonValue(86400.5) << false;
    QTest::newRow("a text") << QJsonValue(u"99999999999"_s) << false;
    QTest::newRow("beyond all days") << QJsonValue(1e300) << true;
}

void LabsAnswerModeTest::readsTheStoredEnd()
{
    QFETCH(QJsonValue, stored);
    QFETCH(bool, isOn);
    m->machine.defaults.values.insert(u"labsAnswerModeExpiresAt"_s, stored);
    m->restart();
    QCOMPARE(m->mode->enabled(), isOn);
    QCOMPARE(m->isStored(), isOn);
    m->machine.clock.advance(30min); // never longer
    QVERIFY(!m->mode->enabled() && !m->isStored());
}

void LabsAnswerModeTest::aClockThatJumps_data()
{
    QTest::addColumn<int>("jumpMinutes");
    QTest::addColumn<int>("endsAfter"); // minutes since it was switched on
    QTest::newRow("a little ahead") << 5 << 25;
    QTest::newRow("hours ahead, as after sleep") << 600 << 11;
    QTest::newRow("back") << -60 << 30;
}

void LabsAnswerModeTest::aClockThatJumps()
{
    QFETCH(int, jumpMinutes);
    QFETCH(int, endsAfter);
    m->mode->setEnabled(true);
    m->machine.clock.advance(10min);
    m->machine.clock.jumpTo(m->machine.clock.now().addSecs(60 * jumpMinutes));
    m->machine.clock.advance(std::chrono::minutes(endsAfter - 10) - 1min);
    QVERIFY(m->mode->enabled());
    m->machine.clock.advance(1min);
    QVERIFY(!m->mode->enabled() && !m->isStored());
}

QTEST_GUILESS_MAIN(LabsAnswerModeTest)
#include "LabsAnswerModeTest.moc"
