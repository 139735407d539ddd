#include "capture/AudioRecorder.h"

#include "support/FakeMachine.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

class AudioRecorderTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyRecordingHasItsOwnFile()
    {
        FakeMachine machine;
        AudioRecorder recorder(machine.microphone, machine.folders, machine.volumes);
        QCOMPARE(recorder.stop(), std::nullopt);
        static const QRegularExpression name(u"/sayvane-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.wav$"_s);
        QString last;
        for (int i = 0; i < 2; ++i) {
            QVERIFY(recorder.start());
            QVERIFY(recorder.recorder()->isRecording());
            const auto path = recorder.stop();
            QVERIFY(path && name.match(*path).hasMatch() && path->startsWith(machine.folders.temporary()));
            QVERIFY(*path != last);
            last = *path;
            QCOMPARE(recorder.recorder(), nullptr);
            QCOMPARE(recorder.stop(), std::nullopt);
        }
        const PcmFormat format = machine.microphone.lastFormat;
        QVERIFY(format.sampleRate == 16000 && format.channels == 1 && format.bitDepth == 16);
        QVERIFY(!format.isFloat && !format.isBigEndian);
    }

    void aFailedStartLeavesNothing_data()
    {
        using Break = void (*)(FakeMachine &);
        QTest::addColumn<Break>("breakIt");
        QTest::addColumn<FlowError>("error");
        const auto row = [](const char *name, Break breakIt, const FlowError &error) {
            QTest::newRow(name) << breakIt << error;
        };
        row(
            "no microphone and no room",
            [](FakeMachine &m) {
                m.microphone.hasDevice = false;
                m.volumes.capacity = 0;
            },
            FlowError::noInputDevice());
        row(
            "no room and no file",
            [](FakeMachine &m) {
                m.volumes.capacity = 52428799;
                m.microphone.openError = u"x"_s;
            },
            FlowError::lowDiskSpace());
        row(
            "no file", [](FakeMachine &m) { m.microphone.openError = u"The folder is gone."_s; },
            FlowError::platform(u"The folder is gone."_s));
        row(
            "not prepared", [](FakeMachine &m) { m.microphone.prepares = false; },
            FlowError::recorderFailed());
        row(
            "not recording", [](FakeMachine &m) { m.microphone.records = false; },
            FlowError::recorderFailed());
    }
    void aFailedStartLeavesNothing()
    {
        using Break = void (*)(FakeMachine &);
        QFETCH(Break, breakIt);
        QFETCH(FlowError, error);
        FakeMachine machine;
        breakIt(machine);
        AudioRecorder recorder(machine.microphone, machine.folders, machine.volumes);
        const auto started = recorder.start();
        QVERIFY(!started && started.error() == error);
        QCOMPARE(recorder.recorder(), nullptr);
        QCOMPARE(recorder.stop(), std::nullopt);
        QVERIFY(machine.folders.recordings().isEmpty());
    }
};

QTEST_GUILESS_MAIN(AudioRecorderTest)
#include "AudioRecorderTest.moc"
