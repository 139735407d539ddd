#include "capture/OverlayPanel.h"

#include "support/VirtualClock.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class OverlayPanelTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hidesAfterItsTime_data()
    {
        QTest::addColumn<qint64>("delayMs");
        QTest::newRow("a success") << qint64(900);
        QTest::newRow("a message") << qint64(3500);
        QTest::newRow("at once") << qint64(0);
        QTest::newRow("in the past") << qint64(-1);
    }
    void hidesAfterItsTime()
    {
        QFETCH(qint64, delayMs);
        VirtualClock clock;
        OverlayPanel panel(clock);
        QVERIFY(!panel.isVisible());
        panel.show(FlowState::idle, u"Nothing heard"_s, OverlayTone::failure);
        panel.hide(std::chrono::milliseconds(delayMs));
        QCOMPARE(panel.isVisible(), delayMs > 0);
        clock.advance(std::chrono::milliseconds(delayMs - 1));
        QCOMPARE(panel.isVisible(), delayMs > 0);
        clock.advance(1ms);
        QVERIFY(!panel.isVisible());
        QCOMPARE(panel.model().message(), u"Nothing heard"_s); // what it last said stays known
        QCOMPARE(panel.model().tone(), OverlayTone::failure);
    }

    void onlyTheLatestRequestCounts()
    {
        VirtualClock clock;
        OverlayPanel panel(clock);
        QSignalSpy changes(&panel, &OverlayPanel::visibleChanged);
        panel.show(FlowState::idle, u"a"_s, OverlayTone::success);
        panel.hide(3500ms);
        clock.advance(3499ms);
        panel.show(FlowState::recording, std::nullopt, OverlayTone::success);
        clock.advance(60s);
        QVERIFY(panel.isVisible());
        panel.hide(900ms);
        panel.hide(3500ms);
        clock.advance(900ms);
        QVERIFY(panel.isVisible());
        panel.hide(0s);
        QVERIFY(!panel.isVisible());
        panel.show(FlowState::processing, std::nullopt, OverlayTone::success);
        clock.advance(10s); // no earlier request hides it
        QVERIFY(panel.isVisible());
        QCOMPARE(changes.size(), 3);
    }

    void aHideDoesNotOutliveThePanel()
    {
        VirtualClock clock;
        {
            OverlayPanel panel(clock);
            panel.show(FlowState::idle, {}, OverlayTone::success);
            panel.hide(900ms);
        }
        QCOMPARE(clock.pendingTimers(), 0U);
        clock.advance(1s);
    }

    void keepsTheNewestLevels()
    {
        VirtualClock clock;
        OverlayPanel panel(clock);
        QCOMPARE(panel.model().levels(), QList<double>(24, 0.0));
        for (int i = 1; i <= 30; ++i)
            panel.push(i);
        QCOMPARE(panel.model().levels().size(), 24);
        QCOMPARE(panel.model().levels().first(), 7.0);
        QCOMPARE(panel.model().levels().last(), 30.0);
        panel.model().clearLevels();
        QCOMPARE(panel.model().levels(), QList<double>(24, 0.0));
    }
};

QTEST_GUILESS_MAIN(OverlayPanelTest)
#include "OverlayPanelTest.moc"
