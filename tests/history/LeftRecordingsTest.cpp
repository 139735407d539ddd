#include "history/LeftRecordings.h"
#include "base/WavHeader.h"
#include "support/FakeMachine.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// What a crash left behind, over a real folder and in virtual time.
class LeftRecordingsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatWasHeardIsKeptWithATrueHeader_data();
    void whatWasHeardIsKeptWithATrueHeader();
    void nothingIsKeptLongerThanAWeek();
    void anIdIsFoundByItsBeginning();

private:
    static void leave(const FakeMachine &machine, const QString &id, const QByteArray &bytes, const QDateTime &date);
};

void LeftRecordingsTest::leave(const FakeMachine &machine, const QString &id, const QByteArray &bytes,
                               const QDateTime &date)
{
    QFile file(machine.folders.temporary() + u"/sayvane-%1.wav"_s.arg(id));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.flush();
    QVERIFY(file.setFileTime(date, QFile::FileModificationTime));
}

void LeftRecordingsTest::whatWasHeardIsKeptWithATrueHeader_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<int>("sound"); // bytes that were heard
    QTest::addColumn<int>("kept");  // -1: no file
    const auto headerOf = [](uint32_t size) {
        const auto header = WavHeader::of(16000, size);
        return QByteArray(header.data(), header.size());
    };
    QTest::newRow("whole") << headerOf(32000) << 32000 << 32000;
    QTest::newRow("half a second behind") << headerOf(16000) << 32000 << 32000;
    QTest::newRow("promises too much") << headerOf(64000) << 32000 << 32000;
    QTest::newRow("torn") << QByteArray(44, '\0') << 32001 << 32000;
    QTest::newRow("next to nothing") << headerOf(16000) << 16000 << -1;
    QTest::newRow("empty") << QByteArray() << 0 << -1;
}

void LeftRecordingsTest::whatWasHeardIsKeptWithATrueHeader()
{
    QFETCH(QByteArray, header);
    QFETCH(int, sound);
    QFETCH(int, kept);
    FakeMachine machine;
    leave(machine, u"ID"_s, header + QByteArray(sound, 'x'), machine.clock.now());
    LeftRecordings recordings(machine.folders, machine.clock);
    QCOMPARE(recordings.takeIn(), kept < 0 ? 0 : 1);
    QVERIFY(machine.folders.recordings().isEmpty());
    QCOMPARE(recordings.all().size(), kept < 0 ? 0 : 1);
    if (kept < 0)
        return;
    const LeftRecording recording = recordings.all().first();
    QCOMPARE(recording.date, machine.clock.now());
    QCOMPARE(recording.seconds, 1.0);
    QFile file(recording.path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const auto expected = WavHeader::of(16000, static_cast<uint32_t>(kept));
    QCOMPARE(file.readAll(), QByteArray(expected.data(), expected.size()) + QByteArray(kept, 'x'));
    QVERIFY(!(file.permissions() & (QFile::ReadGroup | QFile::ReadOther)));
}

void LeftRecordingsTest::nothingIsKeptLongerThanAWeek()
{
    FakeMachine machine;
    const QByteArray bytes(40000, 'x');
    leave(machine, u"OLD"_s, bytes, machine.clock.now().addDays(-7));
    leave(machine, u"FIVE"_s, bytes, machine.clock.now().addDays(-5));
    leave(machine, u"NEW"_s, bytes, machine.clock.now());
    LeftRecordings recordings(machine.folders, machine.clock);
    recordings.takeIn();
    recordings.watchAge();
    const auto ids = [&] {
        QStringList found;
        for (const LeftRecording &recording : recordings.all())
            found.append(recording.id);
        return found;
    };
    QCOMPARE(ids(), (QStringList{u"NEW"_s, u"FIVE"_s}));
    machine.clock.advance(47h);
    QCOMPARE(ids(), (QStringList{u"NEW"_s, u"FIVE"_s}));
    machine.clock.advance(1h);
    QCOMPARE(ids(), QStringList{u"NEW"_s});
    machine.clock.advance(24h * 5);
    QVERIFY(ids().isEmpty());
    QCOMPARE(machine.clock.pendingTimers(), size_t{0});
}

void LeftRecordingsTest::anIdIsFoundByItsBeginning()
{
    FakeMachine machine;
    for (const QString &id : {u"AB1"_s, u"AB2"_s})
        leave(machine, id, QByteArray(40000, 'x'), machine.clock.now());
    LeftRecordings recordings(machine.folders, machine.clock);
    recordings.takeIn();
    QCOMPARE(recordings.find(u"ab2"_s)->id, u"AB2"_s);
    QCOMPARE(recordings.find(u"AB"_s).error(), u"AB stands for several left recordings."_s);
    QCOMPARE(recordings.find(QString()).error(), u"There is no left recording ."_s);
    QVERIFY(LeftRecordings::remove(*recordings.find(u"AB1"_s)));
    QCOMPARE(recordings.find(u"A"_s)->id, u"AB2"_s);
}

QTEST_GUILESS_MAIN(LeftRecordingsTest)
#include "LeftRecordingsTest.moc"
