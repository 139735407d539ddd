#include "desktop/sound/AudioServer.h"
#include "machine/sound/PulseConnection.h"
#include "machine/sound/PulseMicrophone.h"
#include "machine/sound/PulseSoundPlayer.h"

#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QProcess>
#include <QTcpServer>
#include <QTest>
#include <QtEndian>

#include <cmath>
#include <csignal>
#include <functional>
#include <memory>
#include <optional>

#include <fcntl.h>
#include <sndfile.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using Authorization = Microphone::Authorization;

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

const QString nullSink = u"module-null-sink sink_name=speaker rate=48000 channels=1 norewinds=1"_s;

QStringList load(const QString &module)
{
    return QStringList{u"load-module"_s} << module.split(u' ');
}

void writeCookie(const QString &path, char fill)
{
    QFile cookie(path);
    QVERIFY(cookie.open(QFile::WriteOnly));
    cookie.write(QByteArray(256, fill));
}

/// The answers that come later, waited for by a test.
namespace Awaited {

constexpr int limit = 5000; // ms

bool inputDevice(Microphone &microphone)
{
    std::optional<bool> found;
    microphone.findInputDevice([&found](bool isFound) { found = isFound; });
    return QTest::qWaitFor([&found] { return found.has_value(); }, limit) && *found;
}

bool record(Recording &recording)
{
    std::optional<bool> begun;
    recording.record([&begun](bool isBegun) { begun = isBegun; });
    return QTest::qWaitFor([&begun] { return begun.has_value(); }, limit) && *begun;
}

bool stop(Recording &recording)
{
    bool isClosed = false;
    recording.stop([&isClosed] { isClosed = true; });
    return QTest::qWaitFor([&isClosed] { return isClosed; }, limit);
}

} // namespace Awaited

/// A sound file as an independent reader sees it, and what an ear would say about it.
struct HeardSound
{
    int sampleRate = 0;
    int channels = 0;
    int format = 0; // libsndfile's SF_FORMAT_ bits
    QList<qint16> samples;

    /// The sample rate is 0 when it is no sound file, or when its header does not mean what is there: a
    /// lenient reader would mend that in silence.
    static HeardSound read(const QString &path)
    {
        SF_INFO info = {};
        SNDFILE *file = sf_open(QFile::encodeName(path).constData(), SFM_READ, &info);
        if (!file)
            return {};
        HeardSound sound{info.samplerate, info.channels, info.format, QList<qint16>(info.frames * info.channels)};
        const sf_count_t frames = sf_readf_short(file, sound.samples.data(), info.frames);
        sf_close(file);
        QFile raw(path);
        const QByteArray head = raw.open(QFile::ReadOnly) ? raw.read(44) : QByteArray();
        const bool isMeant = head.size() == 44 &&
                             qFromLittleEndian<quint32>(head.constData() + 40) == frames * info.channels * 2 &&
                             qFromLittleEndian<quint32>(head.constData() + 4) + 8 <= raw.size();
        return isMeant ? sound : HeardSound();
    }

    /// The root mean square in dBFS.
    double level() const
    {
        double squares = 0;
        for (const qint16 sample : samples)
            squares += sample * sample / (32768.0 * 32768.0);
        return 10 * std::log10(squares / double(samples.size()));
    }

    /// Of a pure tone, in hertz: counted by its upward zero crossings.
    double pitch() const
    {
        qsizetype first = -1;
        qsizetype last = -1;
        int periods = -1;
        for (qsizetype n = 1; n < samples.size(); ++n) {
            if (samples[n - 1] >= 0 || samples[n] < 0)
                continue;
            first = first < 0 ? n : first;
            last = n;
            ++periods;
        }
        return periods > 0 ? periods * double(sampleRate) / double(last - first) : 0;
    }
};

/// Someone who speaks numbered samples into a microphone that is a named pipe.
///
/// The microphone hears each sample exactly as it was said, as soon as it was said, and nothing else.
class PipeVoice final
{
public:
    explicit PipeVoice(const QString &pipe) : m_pipe(open(QFile::encodeName(pipe).constData(), O_WRONLY | O_CLOEXEC)) {}
    ~PipeVoice() { close(m_pipe); }
    Q_DISABLE_COPY_MOVE(PipeVoice)

    /// The server's module that makes the pipe a microphone of 16 kHz.
    static QString microphone(const QString &name, const QString &pipe)
    {
        return u"module-pipe-source source_name=%1 file=%2 format=s16le rate=16000 channels=1"_s.arg(name, pipe);
    }

    /// Says so many samples.
    void say(qsizetype count)
    {
        QList<qint16> words;
        for (qsizetype n = 0; n < count; ++n) {
            words.append(m_next);
            m_next = m_next == 30000 ? qint16(1) : qint16(m_next + 1);
        }
        const auto size = ssize_t(count * qsizetype(sizeof(qint16)));
        QCOMPARE(write(m_pipe, words.constData(), size_t(size)), size);
        m_said += words;
    }

    /// What was said since the last `forget`.
    const QList<qint16> &said() const { return m_said; }

    void forget() { m_said.clear(); }

private:
    int m_pipe;
    qint16 m_next = 1;
    QList<qint16> m_said;
};

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

/// What comes out of the loudspeakers.
class Loudspeakers
{
public:
    Loudspeakers()
    {
        m_ear.start(u"parec"_s, {u"--device=speaker.monitor"_s, u"--raw"_s, u"--format=s16le"_s, u"--rate=48000"_s,
                                 u"--channels=1"_s, u"--latency-msec=20"_s});
        QTRY_VERIFY_WITH_TIMEOUT(!heard().isEmpty(), 10000);
    }

    ~Loudspeakers()
    {
        m_ear.kill();
        m_ear.waitForFinished();
    }

    QByteArray heard()
    {
        m_heard += m_ear.readAllStandardOutput();
        return m_heard;
    }

    bool areSilent() { return heard().count('\0') == m_heard.size(); }

private:
    QProcess m_ear;
    QByteArray m_heard;
};

} // namespace

/// The microphone and the sounds against real audio servers.
class SoundTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { qunsetenv("PULSE_SERVER"); }

    /// Nobody is there to refuse us: the answer is that there is no microphone.
    void withoutAServerThereIsNoMicrophone()
    {
        const QTemporaryDir folder;
        QLocalServer mute; // takes connections and says nothing
        QVERIFY(mute.listen(folder.filePath(u"native"_s)));
        for (const QByteArray &server : {QByteArray("/nonexistent/native"), mute.fullServerName().toUtf8()}) {
            qputenv("PULSE_SERVER", "unix:" + server);
            PulseConnection connection;
            PulseMicrophone microphone(connection);
            QVERIFY(!Awaited::inputDevice(microphone));
            QCOMPARE(microphone.authorization(), Authorization::authorized);
            const QTemporaryDir files;
            const auto recording = microphone.open(files.filePath(u"a.wav"_s), {});
            QVERIFY(!Awaited::record(**recording));
            QVERIFY(!(*recording)->isRecording() && !(*recording)->loss());
        }
    }

    void microphonesComeAndGo()
    {
        const AudioServer server({nullSink});
        PulseConnection connection;
        PulseMicrophone microphone(connection);
        QVERIFY(!Awaited::inputDevice(microphone)); // a monitor is none
        QCOMPARE(microphone.authorization(), Authorization::authorized);
        const QString pipe = server.path(u"voice"_s);
        server.control(load(PipeVoice::microphone(u"mic"_s, pipe)));
        QTRY_VERIFY_WITH_TIMEOUT(Awaited::inputDevice(microphone), 5000);
        server.control({u"unload-module"_s, u"module-pipe-source"_s});
        QTRY_VERIFY_WITH_TIMEOUT(!Awaited::inputDevice(microphone), 5000);
    }

    void aRealMicrophoneIsPreferredToAMonitor()
    {
        AudioServer server({nullSink});
        const QString pipe = server.path(u"voice"_s);
        server.control(load(PipeVoice::microphone(u"mic"_s, pipe)));
        server.control({u"set-default-source"_s, u"speaker.monitor"_s});
        PulseConnection connection;
        PulseMicrophone microphone(connection);
        QVERIFY(Awaited::inputDevice(microphone));
        const QString path = server.path(u"a.wav"_s);
        const auto recording = microphone.open(path, {});
        QVERIFY(Awaited::record(**recording));
        PipeVoice voice(pipe);
        voice.say(3200);
        QVERIFY(Awaited::stop(**recording));
        QCOMPARE(HeardSound::read(path).samples, voice.said());
    }

    void aBusyMicrophoneRefuses()
    {
        const AudioServer server({});
        server.control(load(PipeVoice::microphone(u"mic"_s, server.path(u"voice"_s))));
        server.control({u"suspend-source"_s, u"mic"_s, u"1"_s});
        PulseConnection connection;
        PulseMicrophone microphone(connection);
        QVERIFY(Awaited::inputDevice(microphone));
        const auto recording = microphone.open(server.path(u"a.wav"_s), {});
        QVERIFY(!Awaited::record(**recording));
        server.control({u"suspend-source"_s, u"mic"_s, u"0"_s});
        QVERIFY(Awaited::record(**recording));
        QVERIFY((*recording)->isRecording());
    }

    void aServerThatRefusesUsDeniesTheMicrophone()
    {
        const AudioServer server({nullSink});
        const QString theirs = server.path(u"theirs"_s);
        const QString ours = server.path(u"ours"_s);
        writeCookie(theirs, 'a');
        writeCookie(ours, 'b');
        QTcpServer free;
        QVERIFY(free.listen(QHostAddress::LocalHost));
        const QString port = QString::number(free.serverPort());
        free.close();
        server.control(load(u"module-native-protocol-tcp listen=127.0.0.1 port=%1 auth-cookie=%2"_s.arg(port, theirs)));
        qputenv("PULSE_SERVER", "tcp:127.0.0.1:" + port.toLatin1());
        qputenv("PULSE_COOKIE", QFile::encodeName(ours));
        PulseConnection connection;
        PulseMicrophone microphone(connection);
        QVERIFY(!Awaited::inputDevice(microphone));
        QCOMPARE(microphone.authorization(), Authorization::denied);
        writeCookie(ours, 'a');
        microphone.requestAccess();
        QTRY_COMPARE_WITH_TIMEOUT(microphone.authorization(), Authorization::authorized, 5000);
        qunsetenv("PULSE_COOKIE");
    }

    void theConnectionComesBackWithTheServer()
    {
        const QTemporaryDir folder;
        const QString pipe = folder.filePath(u"voice"_s);
        AudioServer server({PipeVoice::microphone(u"mic"_s, pipe)});
        PulseConnection connection;
        PulseMicrophone microphone(connection);
        QVERIFY(Awaited::inputDevice(microphone));
        server.kill();
        QTRY_COMPARE_WITH_TIMEOUT(connection.state(), PulseConnection::State::absent, 5000);
        QVERIFY(!Awaited::inputDevice(microphone));
        QCOMPARE(microphone.authorization(), Authorization::authorized);
        QFile::remove(pipe); // the dead server's
        server.start();
        QTRY_COMPARE_WITH_TIMEOUT(connection.state(), PulseConnection::State::ready, 5000); // unasked

        const QString path = server.path(u"a.wav"_s);
        const auto recording = microphone.open(path, {});
        QVERIFY(Awaited::record(**recording));
        PipeVoice voice(pipe);
        voice.say(1600);
        QVERIFY(Awaited::stop(**recording));
        QCOMPARE(HeardSound::read(path).samples, voice.said());
    }

    void aToneKeepsItsPitchAndLevel()
    {
        constexpr double pitch = 3000;
        constexpr double level = -43.01;
        const AudioServer server({nullSink, u"module-remap-source source_name=mic master=speaker.monitor"_s});
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
        recorder.start(QCoreApplication::applicationFilePath(), {u"record"_s, path});
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
        QVERIFY(!(QFileInfo(path).permissions() & (QFile::ReadGroup | QFile::ReadOther)));
        QCOMPARE(sound.samples, room.voice.said().first(sound.samples.size()));
    }

    /// The server hangs at each of the moments at which somebody could wait for it.
    void aServerThatHangsHoldsUpNobody()
    {
        PipeRoom room;
        PulseSoundPlayer player(*room.connection, u"" SOUNDS ""_s);
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

    void aLossKeepsWhatWasHeard()
    {
        using Loss = Recording::Loss;
        const std::pair<Loss, std::function<void(PipeRoom &)>> ways[]{
            {Loss::microphone, [](PipeRoom &room) { room.server.kill(); }},
            {Loss::microphone,
             [](PipeRoom &room) {
                 room.server.control({u"unload-module"_s, u"module-pipe-source"_s});
             }},
            {Loss::microphone,
             [](PipeRoom &room) {
                 room.server.control({u"suspend-source"_s, u"mic"_s, u"1"_s});
             }},
            {Loss::disk, [](PipeRoom &room) {
                 limitFiles(rlim_t(header + 32000 + 1)); // in the middle of a sample
                 room.voice.say(100);
             }}};
        for (const auto &[loss, lose] : ways) {
            PipeRoom room;
            const auto recording = room.start("a.wav");
            QVERIFY(recording);
            room.voice.say(16000);
            QTRY_COMPARE_WITH_TIMEOUT(QFileInfo(room.file("a.wav")).size(), header + 32000, 5000);
            QVERIFY(recording->isRecording());
            lose(room);
            QTRY_VERIFY_WITH_TIMEOUT(!recording->isRecording(), 5000);
            QCOMPARE(recording->loss(), std::optional(loss));
            limitFiles(RLIM_INFINITY);
            QVERIFY(Awaited::stop(*recording));
            QVERIFY(!recording->isRecording());
            QCOMPARE(HeardSound::read(room.file("a.wav")).samples, room.voice.said().first(16000));
            QCOMPARE(QFileInfo(room.file("a.wav")).size(), header + 32000);
        }
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

    void aRestartedServerPlaysOn()
    {
        AudioServer server({nullSink});
        PulseConnection connection;
        QTRY_COMPARE_WITH_TIMEOUT(connection.state(), PulseConnection::State::ready, 5000);
        PulseSoundPlayer player(connection, u"" SOUNDS ""_s);
        {
            Loudspeakers loudspeakers;
            player.play(u"Tink"_s);
            QTRY_VERIFY_WITH_TIMEOUT(!loudspeakers.areSilent(), 5000);
        }
        server.kill();
        QTRY_COMPARE_WITH_TIMEOUT(connection.state(), PulseConnection::State::absent, 5000);
        player.play(u"Tink"_s);
        server.start();
        QTRY_COMPARE_WITH_TIMEOUT(connection.state(), PulseConnection::State::ready, 5000);
        Loudspeakers loudspeakers;
        QVERIFY(loudspeakers.areSilent());
        player.play(u"Tink"_s);
        QTRY_VERIFY_WITH_TIMEOUT(!loudspeakers.areSilent(), 5000);
    }
};

namespace {

/// The program that is killed: records into the file for as long as it lives.
int recordUntilKilled(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    PulseConnection connection;
    PulseMicrophone microphone(connection);
    const auto recording = microphone.open(QFile::decodeName(argv[2]), {});
    if (!recording)
        return 1;
    (*recording)->record([](bool begun) {
        if (!begun)
            QCoreApplication::exit(1);
    });
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 3 && QByteArrayView(argv[1]) == "record")
        return recordUntilKilled(argc, argv);
    QCoreApplication application(argc, argv);
    SoundTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "SoundTest.moc"
