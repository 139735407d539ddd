#include "WavFile.h"

#include "service/speech/Pace.h"
#include "service/speech/Pieces.h"
#include "service/speech/Recording.h"

#include <QTest>

#include <vector>

/// Reading WAV files and cutting long ones.
class RecordingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsOrRefuses_data();
    void readsOrRefuses();
    void anyDamageIsSurvived();
    void cutsWhereItIsQuiet();
    void expectsWhatThePaceTells();
};

void RecordingTest::readsOrRefuses_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("samples");
    QTest::addColumn<QString>("complaint");
    const QByteArray sound(200, 'x');
    const QString format = QStringLiteral("The recording must be 16-bit PCM with one channel at 16000 Hz.");
    const QString none = QStringLiteral("The recording is damaged: it holds no sound.");
    const auto fails = [](const char *name, const QByteArray &bytes, const QString &complaint) {
        QTest::newRow(name) << bytes << -1 << complaint;
    };
    const auto reads = [](const char *name, const WavFile &file, int samples) {
        QTest::newRow(name) << file.bytes() << samples << QString();
    };
    reads("plain", {.samples = sound}, 100);
    reads("chunk of odd length first", {.samples = sound, .extraChunk = QByteArray("LIST\3\0\0\0abc\0", 12)}, 100);
    reads("killed recorder, length 0", {.samples = sound, .declaredLength = 0}, 100);
    reads("killed recorder, length -1", {.samples = sound, .declaredLength = 0xffffffff}, 100);
    reads("half a sample at the end", {.samples = sound.first(199)}, 99);
    fails("cut off", WavFile{.samples = sound, .declaredLength = 202}.bytes(),
          QStringLiteral("The recording is incomplete."));
    fails("stereo", WavFile{.channels = 2, .samples = sound}.bytes(), format);
    fails("chunk beyond the end", WavFile{.extraChunk = QByteArray("LIST\xff\xff\xff\xff", 8)}.bytes(), none);
    fails("format cut off", QByteArray("RIFF\0\0\0\0WAVEfmt \2\0\0\0\1\0", 22),
          QStringLiteral("The recording is damaged: its format is cut off."));
    fails("nothing", {}, QStringLiteral("The recording is not a WAV file."));
}

void RecordingTest::readsOrRefuses()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, samples);
    QFETCH(QString, complaint);
    const auto recording = Recording::fromWav({bytes.constData(), static_cast<size_t>(bytes.size())});
    QCOMPARE(QString::fromStdString(recording ? std::string() : recording.error()), complaint);
    QCOMPARE(recording ? static_cast<int>(recording->samples.size()) : -1, samples);
    if (samples == 100)
        QCOMPARE(recording->samples[99], std::int16_t{0x7878});
}

void RecordingTest::anyDamageIsSurvived()
{
    const QByteArray whole =
        WavFile{.samples = QByteArray(20, 'x'), .extraChunk = QByteArray("LIST\2\0\0\0ab", 10)}.bytes();
    for (int length = 0; length < whole.size(); ++length) {
        for (int byte = 0; byte < length; ++byte) {
            QByteArray damaged = whole.first(length);
            damaged[byte] = static_cast<char>(damaged[byte] ^ 0xff);
            const auto recording = Recording::fromWav({damaged.constData(), static_cast<size_t>(damaged.size())});
            QVERIFY(!recording || recording->samples.size() <= static_cast<size_t>(length) / 2);
        }
    }
}

void RecordingTest::cutsWhereItIsQuiet()
{
    constexpr size_t second = Recording::sampleRate;
    std::vector<std::int16_t> samples(60 * second, 8000);
    std::fill_n(samples.begin() + 11 * second, second / 2, std::int16_t{3});
    const auto pieces = Pieces::of(samples);
    QVERIFY(pieces[0].size() > 11 * second && pieces[0].size() < 11 * second + second / 2);
    size_t total = 0;
    for (const auto piece : pieces) {
        QCOMPARE(piece.data(), samples.data() + total);
        QVERIFY(piece.size() <= 16 * second);
        total += piece.size();
    }
    QCOMPARE(total, samples.size());
    QVERIFY(!Pieces::isSilent(pieces[0]));
    QVERIFY(Pieces::isSilent(std::span(samples).subspan(11 * second, second / 2)));
    QCOMPARE(Pieces::of({}).size(), size_t{1});
}

void RecordingTest::expectsWhatThePaceTells()
{
    using S = Pace::Seconds;
    Pace pace;
    for (int i = 0; i < 100; ++i) {
        pace.add(S(10), S(5));
        pace.add(S(0.1), S(90)); // too short to tell
    }
    const std::vector<S> waiting{S(600), S(4)};
    QCOMPARE(qRound(pace.expected(S(100), {}, 1).count()), 50);
    QCOMPARE(qRound(pace.expected(S(100), waiting, 1).count()), 102); // the long one delays it by its own length
    QCOMPARE(qRound(pace.expected(S(10), waiting, 2).count()), 6);
    for (int i = 0; i < 10; ++i)
        pace.add(S(10), S(50));
    QVERIFY(pace.expected(S(100), {}, 1) > S(300)); // a machine that becomes slow is noticed
}

QTEST_APPLESS_MAIN(RecordingTest)
#include "RecordingTest.moc"
