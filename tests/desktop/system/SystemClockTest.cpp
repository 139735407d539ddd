#include "machine/desktop/SystemClock.h"
#include "history/LocalDays.h"
#include "machine/desktop/DiskThread.h"

#include <QtTest>

#include <ctime>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class SystemClockTest : public QObject
{
    Q_OBJECT

    SystemClock m_clock;

private Q_SLOTS:
    void theCalendarIsThatOfTheCLibrary()
    {
        const QByteArray before = qgetenv("TZ");
        const time_t now = QDateTime::currentSecsSinceEpoch();
        for (const char *variable : {"", "Europe/Berlin", ":Europe/Berlin", "/usr/share/zoneinfo/Europe/Berlin",
                                     ":/usr/share/zoneinfo/Africa/Casablanca", ":/etc/localtime", "/no/such/file",
                                     "no zone", "GMT-2", "CET-1CEST", "NZST-12NZDT", "EST5EDT",
                                     "CET-1CEST,M3.5.0,M10.5.0/3", "<-0330>3:30", "FAR-20:15", "none"}) {
            if (variable == QByteArray("none"))
                qunsetenv("TZ");
            else
                qputenv("TZ", variable);
            const QTimeZone zone = m_clock.timeZone();
            QVERIFY(zone.isValid());
            LocalDays days(zone);
            int wrong = 0;
            for (time_t moment = now - now % 1800 - 366 * 86400; moment < now + 300 * 86400; moment += 1800) {
                tm local{};
                localtime_r(&moment, &local);
                const QDate day(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
                const QDateTime asked = QDateTime::fromSecsSinceEpoch(moment, Qt::UTC);
                wrong += days.dayOf(asked) != day.toJulianDay() || zone.offsetFromUtc(asked) != local.tm_gmtoff;
            }
            QVERIFY2(wrong == 0, variable);
        }
        qputenv("TZ", before);
    }

    void workForTheDiskIsDoneInOrderBesideTheMainThread()
    {
        DiskThread disk;
        QSemaphore slow;
        QStringList done; // read once the disk has finished
        QStringList told;
        auto context = std::make_unique<QObject>();
        for (const QString &name : {u"a"_s, u"b"_s, u"c"_s})
            disk.run(
                *context,
                [&, name] {
                    slow.acquire();
                    done += QThread::currentThread() == QCoreApplication::instance()->thread() ? u"main"_s : name;
                },
                [&, name] { told += name; });
        slow.release(2); // nothing above has waited for it
        QTRY_COMPARE(told, (QStringList{u"a"_s, u"b"_s}));
        slow.release();
        disk.finish();
        QCOMPARE(done, (QStringList{u"a"_s, u"b"_s, u"c"_s}));
        context.reset(); // nobody is left to be told
        QCoreApplication::processEvents();
        QCOMPARE(told.size(), 2);
    }

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

    void aDroppedTimerAndOneBeyondAMonthDoNotRing()
    {
        int count = 0;
        auto timer = m_clock.every(2ms, [&count] { ++count; });
        QTRY_VERIFY(count >= 5);
        timer.reset();
        const int last = count;
        bool waited = false;
        const auto month = m_clock.after(600h, [&count] { ++count; });
        const auto longest = m_clock.every(Clock::Duration::max(), [&count] { ++count; });
        const auto later = m_clock.after(20ms, [&waited] { waited = true; });
        QTRY_VERIFY(waited);
        QCOMPARE(count, last);
    }
};

QTEST_GUILESS_MAIN(SystemClockTest)
#include "SystemClockTest.moc"
