#include "cli/CommandLine.h"
#include "cli/HistoryTable.h"
#include "cli/SpokenFile.h"
#include "program/ControlInterface.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <vector>

#include <fcntl.h>
#include <sndfile.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

/// The rules of the command line that need no program and no bus.
class CommandsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wrongWordsAreToldApart_data();
    void wrongWordsAreToldApart();
    void everyShellAndTheManualKnowEveryCommand();
    void tablesKeepEveryCharacter();
    void profilesNeverShareABusName();
    void anyRecordingBecomesSpeech_data();
    void anyRecordingBecomesSpeech();
};

void CommandsTest::wrongWordsAreToldApart_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("complaint"); // empty: they are right
    const auto row = [](const char *words, const QString &complaint) {
        QTest::newRow(words) << QString::fromLatin1(words) << complaint;
    };
    row("", {});
    row("--profile a toggle", {});
    row("history --csv", {});
    row("recover delete --all", {});
    row("transcribe -", {});
    row("recover failed on", {});
    row("--store-secret groq_api_key", {});
    row("tickle", u"There is no command 'tickle'."_s);
    row("--loud", u"Unknown option 'loud'."_s);
    row("toggle twice", u"Unexpected argument 'twice'."_s);
    row("transcribe", u"'transcribe' takes FILE."_s);
    row("toggle --json", u"--json means nothing here."_s);
    row("autostart maybe", u"'autostart' takes on or off."_s);
    row("autostart off", {});
    row("--all", u"--all means nothing here."_s);
    row("history --json --csv", u"--json and --csv exclude each other."_s);
    row("toggle --store-secret groq_api_key", u"--store-secret stands alone."_s);
    row("--service http://x.test", u"--service takes an https address without query or fragment."_s);
}

void CommandsTest::wrongWordsAreToldApart()
{
    QFETCH(QString, words);
    const auto asked = CommandLine::parse(words.split(u' ', Qt::SkipEmptyParts));
    QTEST(asked ? QString() : asked.error(), "complaint");
}

void CommandsTest::everyShellAndTheManualKnowEveryCommand()
{
    for (const QString &shell : {u"sayvane.bash"_s, u"_sayvane"_s, u"sayvane.fish"_s, u"../../docs/man/sayvane.1"_s}) {
        QFile file(QStringLiteral(COMPLETIONS "/") + shell);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        for (const QString &verb : CommandLine::verbs())
            QVERIFY2(text.contains(QRegularExpression(u"[ ']%1[ :\"\n]"_s.arg(verb))), qPrintable(shell + u' ' + verb));
    }
}

void CommandsTest::tablesKeepEveryCharacter()
{
    const Dictation record{.id = QUuid(u"{00000000-0000-0000-0000-000000000001}"_s),
                           .date = QDateTime(QDate(2026, 3, 1), QTime(23, 30), QTimeZone::utc()),
                           .durationSeconds = 2.5,
                           .wordCount = 3,
                           .text = u"Say \"hi\",\nthen go"_s,
                           .transcribeMs = 900,
                           .providerRaw = u"groq"_s};
    QCOMPARE(HistoryTable::csv({record}).section(u"\r\n"_s, 1),
             u"00000000-0000-0000-0000-000000000001,2026-03-01T23:30:00Z,2.5,3,"
             "\"Say \"\"hi\"\",\nthen go\",,900,,,groq,,\r\n"_s);
    QCOMPARE(HistoryTable::text({record}, QTimeZone(3600)), u"2026-03-02 00:30  Say \"hi\", then go\n"_s);
}

void CommandsTest::profilesNeverShareABusName()
{
    const QString base = u"app.sayvane.Sayvane1"_s;
    QCOMPARE(ControlInterface::busName({}), base);
    QCOMPARE(ControlInterface::busName(u"run"_s), base + u".profile_run"_s);
    QCOMPARE(ControlInterface::busName(u"a_b-ü"_s), base + u".profile_a_5fb_2d_c3_bc"_s);
}

namespace {

/// A tone in every channel, as the format has it.
void writeTone(const QString &path, int format, int rate, int channels, int seconds)
{
    SF_INFO info = {
        .frames = 0, .samplerate = rate, .channels = channels, .format = format, .sections = 0, .seekable = 0};
    SNDFILE *file = sf_open(QFile::encodeName(path).constData(), SFM_WRITE, &info);
    QVERIFY2(file, sf_strerror(nullptr));
    std::vector<float> second(static_cast<size_t>(rate * channels));
    for (size_t i = 0; i < second.size(); ++i)
        second[i] = 0.5F * std::sin(2764.6F * static_cast<float>(i / channels) / static_cast<float>(rate)); // 440 Hz
    for (int i = 0; i < seconds; ++i)
        QCOMPARE(sf_writef_float(file, second.data(), rate), rate);
    sf_close(file);
}

} // namespace

void CommandsTest::anyRecordingBecomesSpeech_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("refusal");
    QTest::newRow("as it should be") << (SF_FORMAT_WAV | SF_FORMAT_PCM_16) << 16000 << 1 << 2 << QString();
    QTest::newRow("WAV of floats") << (SF_FORMAT_WAV | SF_FORMAT_FLOAT) << 48000 << 6 << 2 << QString();
    QTest::newRow("telephone") << (SF_FORMAT_WAV | SF_FORMAT_ULAW) << 8000 << 1 << 2 << QString();
    QTest::newRow("FLAC") << (SF_FORMAT_FLAC | SF_FORMAT_PCM_24) << 44100 << 2 << 2 << QString();
    QTest::newRow("Ogg Vorbis") << (SF_FORMAT_OGG | SF_FORMAT_VORBIS) << 44100 << 2 << 2 << QString();
    QTest::newRow("Opus") << (SF_FORMAT_OGG | SF_FORMAT_OPUS) << 48000 << 1 << 2 << QString();
    QTest::newRow("MP3") << (SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III) << 44100 << 1 << 2 << QString();
    QTest::newRow("too long") << (SF_FORMAT_WAV | SF_FORMAT_PCM_U8) << 16000 << 1 << 790
                              << u"The recording is longer than 13 minutes."_s;
    QTest::newRow("no recording") << 0 << 0 << 0 << 0 << u"This is not a recording that can be read"_s;
}

void CommandsTest::anyRecordingBecomesSpeech()
{
    QFETCH(int, format);
    QFETCH(int, rate);
    QFETCH(int, channels);
    QFETCH(int, seconds);
    QFETCH(QString, refusal);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"recording"_s);
    if (format != 0)
        writeTone(path, format, rate, channels, seconds);
    else
        QVERIFY(QFile::copy(QStringLiteral(COMPLETIONS "/sayvane.bash"), path));
    const int input = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    QVERIFY(::dup2(input, STDIN_FILENO) == STDIN_FILENO && ::close(input) == 0);
    std::rewind(stdin);
    for (const QString &given : {path, u"-"_s}) {
        const auto spoken = SpokenFile::of(given);
        QVERIFY2(spoken ? refusal.isEmpty() : !refusal.isEmpty() && spoken.error().sentence.startsWith(refusal),
                 spoken ? "accepted" : qPrintable(spoken.error().sentence));
        if (!spoken)
            continue;
        SF_INFO info = {};
        SNDFILE *file = sf_open(QFile::encodeName(spoken->path()).constData(), SFM_READ, &info);
        QVERIFY(file);
        QCOMPARE(info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
        QVERIFY(info.samplerate == 16000 && info.channels == 1);
        QVERIFY2(std::abs(info.frames - 32000) < 2000, qPrintable(QString::number(info.frames)));
        std::vector<float> samples(static_cast<size_t>(info.frames));
        sf_read_float(file, samples.data(), info.frames);
        sf_close(file);
        QCOMPARE_GT(*std::ranges::max_element(samples), 0.4F);
        QCOMPARE_LT(*std::ranges::max_element(samples), 0.6F);
    }
}

QTEST_GUILESS_MAIN(CommandsTest)
#include "CommandsTest.moc"
