#include "platform/linux/system/SystemClock.h"

#include <QtTest>

using namespace std::chrono_literals;

class SystemClockTest : public QObject
{
    Q_OBJECT

    SystemClock m_clock;

private Q_SLOTS:
    void callsComeInTheOrderOfTheirDelaysAndNeverEarly()
    {
        QList<int> order;
        const Clock::Duration start = m_clock.monotonic();
        Clock::Duration firstAt{};
        const auto second = m_clock.after(40ms, [&] { order += 2; });
        const auto first = m_clock.after(20ms + 300us, [&] {
            firstAt = m_clock.monotonic();
            order += 1;
        });
        const auto now = m_clock.after(0ns, [&] { order += 0; });
        const auto past = m_clock.after(-1s, [&] { order += 0; });
        QVERIFY(order.isEmpty()); // not from within the calls above
        QTRY_COMPARE(order, (QList<int>{0, 0, 1, 2}));
        QVERIFY(firstAt - start >= 20ms + 300us);
    }

    void aTimerMayBeDestroyedByItsOwnCall()
    {
        // The captured text is used after the timer is gone: the call must outlive it.
        std::unique_ptr<Timer> once;
        std::unique_ptr<Timer> repeating;
        QString seen;
        once = m_clock.after(1ms, [&once, &seen, text = QString(64, u'a')] {
            once.reset();
            seen += text;
        });
        repeating = m_clock.every(1ms, [&repeating, &seen, text = QString(64, u'b')] {
            repeating.reset();
            seen += text;
        });
        QTRY_COMPARE(seen.size(), 128);
    }

    void aRepeatingTimerGoesOnUntilItIsDropped()
    {
        int count = 0;
        auto timer = m_clock.every(2ms, [&count] { ++count; });
        QTRY_VERIFY(count >= 5);
        timer.reset();
        const int last = count;
        bool waited = false;
        const auto later = m_clock.after(20ms, [&waited] { waited = true; });
        QTRY_VERIFY(waited);
        QCOMPARE(count, last);
    }

    void delaysBeyondAMonthDoNotRingAtOnce()
    {
        bool rang = false;
        bool waited = false;
        const auto month = m_clock.after(600h, [&rang] { rang = true; });
        const auto longest = m_clock.every(Clock::Duration::max(), [&rang] { rang = true; });
        const auto later = m_clock.after(20ms, [&waited] { waited = true; });
        QTRY_VERIFY(waited);
        QVERIFY(!rang);
    }
};

QTEST_GUILESS_MAIN(SystemClockTest)
#include "SystemClockTest.moc"
