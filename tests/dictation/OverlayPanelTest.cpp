#include "dictation/OverlayPanel.h"

#include "support/VirtualClock.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class OverlayPanelTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
};

QTEST_GUILESS_MAIN(OverlayPanelTest)
#include "OverlayPanelTest.moc"
