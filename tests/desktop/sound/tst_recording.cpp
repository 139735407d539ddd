#include "desktop/sound/AudioServer.h"
#include "desktop/sound/Awaited.h"
#include "desktop/sound/HeardSound.h"
#include "desktop/sound/PipeVoice.h"
#include "machine/sound/PulseConnection.h"
#include "machine/sound/PulseMicrophone.h"
#include "machine/sound/PulseSoundPlayer.h"

#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include <cmath>
#include <csignal>
#include <functional>
#include <memory>

#include <sndfile.h>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype header = 44;

/// A pure tone as a file to play, in stereo at the usual rate of music.
void writeTone(const QString &path, double pitch, double amplitude)
{
    SF_INFO info = {};
    info.samplerate = 44100;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE *file = sf_open(QFile::encodeName(path).constData(), SFM_WRITE, &info);
    QVERIFY(file);
    QList<float> frames;
    for (int n = 0; n < 20 * info.samplerate; ++n) {
        const auto sample = float(amplitude * std::sin(2 * M_PI * pitch * n / info.samplerate));
        frames << sample << sample;
    }
    sf_writef_float(file, frames.constData(), frames.size() / 2);
    sf_close(file);
}

/// The limit that a full disk is for one process.
void limitFiles(rlim_t size)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = size;
    setrlimit(RLIMIT_FSIZE, &limit);
}

} // namespace

/// A microphone that hears exactly what a voice says into a pipe.
struct PipeRoom
{
    PipeRoom() : connection(std::make_unique<PulseConnection>()), microphone(*connection)
    {
        QVERIFY(Awaited::inputDevice(microphone));
    }

    QString file(const char *name) const { return server.path(QString::fromLatin1(name)); }

    std::unique_ptr<Recording> start(const char *name)
    {
        auto recording = microphone.open(file(name), {});
        return recording && Awaited::record(**recording) ? std::move(*recording) : nullptr;
    }

    QTemporaryDir pipes;
    QString pipe = pipes.filePath(u"voice"_s);
    AudioServer server{{PipeVoice::microphone(u"mic"_s, pipe)}};
    PipeVoice voice{pipe};
    std::unique_ptr<PulseConnection> connection;
    PulseMicrophone microphone;
};

class RecordingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aToneKeepsItsPitchAndLevel()
    {
        constexpr double pitch = 3000;
        constexpr double level = -43.01;
        const AudioServer server({u"module-null-sink sink_name=speaker norewinds=1"_s,
                                  u"module-remap-source source_name=mic master=speaker.monitor"_s});
        PulseConnection connection;
        PulseMicrophone microphone(connection);
        QVERIFY(Awaited::inputDevice(microphone));
        const auto recording = microphone.open(server.path(u"a.wav"_s), {});
        QVERIFY(Awaited::record(**recording));
        const auto power = [&recording] {
            (*recording)->updateMeters();
            return (*recording)->averagePower(0);
        };
        QCOMPARE(power(), -120.0);

        const QString tone = server.path(u"tone.wav"_s);
        writeTone(tone, pitch, 0.01);
        QProcess player;
        player.start(u"paplay"_s, {u"--device=speaker"_s, tone});
        QTRY_VERIFY_WITH_TIMEOUT(power() > level - 6, 5000);

        // Opened amid the tone, a recording has it from its first sample to its last.
        const QString path = server.path(u"b.wav"_s);
        const auto inside = microphone.open(path, {});
        QVERIFY(Awaited::record(**inside));
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(path).size() > 16000, 5000);
        QVERIFY2(std::abs(power() - level) < 1, qPrintable(QString::number(power())));
        QVERIFY(Awaited::stop(**inside));
        player.kill();
        player.waitForFinished();

        const HeardSound sound = HeardSound::read(path);
        QCOMPARE(sound.sampleRate, 16000);
        QCOMPARE(sound.channels, 1);
        QCOMPARE(sound.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
        QCOMPARE(qRound(sound.pitch()), qRound(pitch));
        for (qsizetype at = 0; at + 160 <= sound.samples.size(); at += 160) {
            const HeardSound part{16000, 1, 0, sound.samples.sliced(at, 160)};
            QVERIFY2(std::abs(part.level() - level) < 1, qPrintable(QString::number(at)));
        }
    }

    /// Every sample said between the answer of record and the call of stop is in the file.
    void nothingSaidIsLost()
    {
        PipeRoom room;
        for (const char *name : {"1.wav", "2.wav", "3.wav"}) {
            const auto recording = room.start(name);
            QVERIFY(recording);
            room.voice.forget();
            room.voice.say(800);
            QVERIFY(Awaited::stop(*recording));
            QVERIFY(!recording->isRecording());
            QCOMPARE(HeardSound::read(room.file(name)).samples, room.voice.said());
        }
    }

    void aKilledRecorderLeavesAReadableFile()
    {
        PipeRoom room;
        const QString path = room.file("a.wav");
        QProcess recorder;
        recorder.start(QStringLiteral(RECORDER), {path});
        QTRY_VERIFY_WITH_TIMEOUT(room.server.control({u"list"_s, u"source-outputs"_s}).contains("Dictation"), 5000);
        for (int n = 1; n <= 6; ++n) {
            room.voice.say(8000);
            QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(path).size() >= header + qsizetype(n) * 16000, 5000);
        }
        recorder.kill();
        recorder.waitForFinished();
        const HeardSound sound = HeardSound::read(path);
        QCOMPARE(sound.sampleRate, 16000);
        QVERIFY(sound.samples.size() > 48000 - 16000);
        QCOMPARE(sound.samples, room.voice.said().first(sound.samples.size()));
    }

    /// The server hangs at each of the moments at which somebody could wait for it.
    void aServerThatHangsHoldsUpNobody()
    {
        PipeRoom room;
        PulseSoundPlayer player(*room.connection, QStringLiteral(SOUNDS));
        std::optional<bool> begun;
        auto recording = *room.microphone.open(room.file("a.wav"), {});
        room.server.halt();
        recording->record([&begun](bool isBegun) { begun = isBegun; });
        player.play(u"Tink"_s);
        QVERIFY(!begun); // the call is over, and the server has not gone on
        QTRY_COMPARE_WITH_TIMEOUT(begun, std::optional(false), 5000);
        recording.reset();
        room.server.goOn();

        recording = room.start("b.wav");
        QVERIFY(recording);
        room.voice.forget();
        room.voice.say(8000);
        QTRY_COMPARE_WITH_TIMEOUT(QFileInfo(room.file("b.wav")).size(), header + 16000, 5000);
        room.server.halt();
        bool isClosed = false;
        recording->stop([&isClosed] { isClosed = true; });
        QVERIFY(!isClosed);
        QTRY_VERIFY_WITH_TIMEOUT(isClosed, 5000);
        QCOMPARE(HeardSound::read(room.file("b.wav")).samples, room.voice.said());
        room.server.goOn();

        // One that is dropped says nothing any more, and its file is complete as it is.
        room.voice.forget();
        recording = room.start("c.wav");
        QVERIFY(recording);
        room.voice.say(8000);
        QTRY_COMPARE_WITH_TIMEOUT(recording->heard(), 16000, 5000);
        recording->stop([] { QFAIL("It is gone."); });
        recording.reset();
        QCOMPARE(HeardSound::read(room.file("c.wav")).samples, room.voice.said());
    }

    void aLossKeepsWhatWasHeard_data()
    {
        QTest::addColumn<std::function<void(PipeRoom &)>>("lose");
        QTest::addColumn<Recording::Loss>("loss");
        const auto row = [](const char *name, const std::function<void(PipeRoom &)> &lose) {
            QTest::newRow(name) << lose
                                << (name == QByteArray("the disk is full") ? Recording::Loss::disk
                                                                           : Recording::Loss::microphone);
        };
        row("the server dies", [](PipeRoom &room) { room.server.kill(); });
        row("the microphone is unplugged", [](PipeRoom &room) {
            room.server.control({u"unload-module"_s, u"module-pipe-source"_s});
        });
        row("the microphone is taken away", [](PipeRoom &room) {
            room.server.control({u"suspend-source"_s, u"mic"_s, u"1"_s});
        });
        row("the disk is full", [](PipeRoom &room) {
            limitFiles(rlim_t(header + 32000));
            room.voice.say(100);
        });
    }

    void aLossKeepsWhatWasHeard()
    {
        QFETCH(std::function<void(PipeRoom &)>, lose);
        PipeRoom room;
        const auto recording = room.start("a.wav");
        QVERIFY(recording);
        room.voice.say(16000);
        QTRY_COMPARE_WITH_TIMEOUT(QFileInfo(room.file("a.wav")).size(), header + 32000, 5000);
        QVERIFY(recording->isRecording());
        lose(room);
        QTRY_VERIFY_WITH_TIMEOUT(!recording->isRecording(), 5000);
        QTEST(recording->loss().value(), "loss");
        limitFiles(RLIM_INFINITY);
        QVERIFY(Awaited::stop(*recording));
        QVERIFY(!recording->isRecording());
        QCOMPARE(HeardSound::read(room.file("a.wav")).samples, room.voice.said().first(16000));
    }

    void anotherMicrophoneTakesOver()
    {
        PipeRoom room;
        const QString other = room.pipes.filePath(u"other"_s);
        room.server.control(QStringList{u"load-module"_s} << PipeVoice::microphone(u"headset"_s, other).split(u' '));
        const auto recording = room.start("a.wav");
        QVERIFY(recording);
        room.voice.say(1600);
        QTRY_COMPARE_WITH_TIMEOUT(QFileInfo(room.file("a.wav")).size(), header + 3200, 5000);
        room.server.control({u"set-default-source"_s, u"headset"_s});
        PipeVoice voice(other);
        QTRY_VERIFY_WITH_TIMEOUT((voice.say(160), QFileInfo(room.file("a.wav")).size() > header + 3200), 5000);
        QVERIFY(recording->isRecording());
    }
};

QTEST_GUILESS_MAIN(RecordingTest)
#include "tst_recording.moc"
