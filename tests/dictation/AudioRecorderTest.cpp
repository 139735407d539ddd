#include "dictation/AudioRecorder.h"

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
        std::optional<QString> path;
        const auto stopped = [&path](const std::optional<QString> &file) { path = file; };
        recorder.stop(stopped);
        QCOMPARE(path, std::nullopt);
        static const QRegularExpression name(u"/sayvane-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.wav$"_s);
        QString last;
        for (int i = 0; i < 2; ++i) {
            recorder.start([](const auto &started) { QVERIFY(started); });
            QVERIFY(recorder.recorder()->isRecording());
            recorder.stop(stopped);
            QVERIFY(path && name.match(*path).hasMatch() && path->startsWith(machine.folders.temporary()));
            QVERIFY(*path != last);
            last = *path;
            QCOMPARE(recorder.recorder(), nullptr);
            recorder.stop(stopped);
            QCOMPARE(path, std::nullopt);
        }
        const PcmFormat format = machine.microphone.lastFormat;
        QVERIFY(format.sampleRate == 16000 && format.channels == 1 && format.bitDepth == 16);
        QVERIFY(!format.isFloat && !format.isBigEndian);
    }
};

QTEST_GUILESS_MAIN(AudioRecorderTest)
#include "AudioRecorderTest.moc"
