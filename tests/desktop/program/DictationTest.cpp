#include "desktop/program/Desk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

const QString shortClip = u"sense_and_sensibility_01_austen_64kb-0880"_s;
const QString longClip = u"sense_and_sensibility_01_austen_64kb-0870"_s;

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
}

/// Word errors (Levenshtein distance over words) per word spoken.
double wordErrorRate(const QString &spoken, const QString &heard)
{
    const auto words = [](QString text) {
        text.removeIf([](QChar character) { return character.isPunct(); });
        return text.toLower().split(u' ', Qt::SkipEmptyParts);
    };
    const QStringList reference = words(spoken);
    const QStringList hypothesis = words(heard);
    std::vector<qsizetype> row(hypothesis.size() + 1);
    for (qsizetype j = 0; j <= hypothesis.size(); ++j)
        row[j] = j;
    for (qsizetype i = 1; i <= reference.size(); ++i) {
        qsizetype diagonal = std::exchange(row[0], i);
        for (qsizetype j = 1; j <= hypothesis.size(); ++j) {
            const qsizetype substitution = diagonal + (reference[i - 1] == hypothesis[j - 1] ? 0 : 1);
            diagonal = std::exchange(row[j], std::min({row[j] + 1, row[j - 1] + 1, substitution}));
        }
    }
    return static_cast<double>(row.back()) / static_cast<double>(reference.size());
}

} // namespace

/// Dictations as a user makes them, into programs that know nothing of us.
class DictationTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { m_desk.reset(); }

    void textArrivesWhereTheCursorIs_data();
    void textArrivesWhereTheCursorIs();
    void escapeCancelsAndIsNotTyped();
    void aServiceThatIsGoneIsToldAndNothingIsPasted();
    void endingWhileRecordingLeavesNothingBehind();
    void aDyingSoundServerKeepsWhatItHeard(); // last: no sound after it

private:
    std::unique_ptr<Desk> m_desk;
};

void DictationTest::initTestCase()
{
    m_desk = std::make_unique<Desk>();
    QVERIFY(m_desk->startSayvane());
}

void DictationTest::textArrivesWhereTheCursorIs_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("saving"); // the keys that put the text into the file
    QTest::addColumn<QString>("clipboardType");
    QTest::addColumn<QByteArray>("clipboardData");
    const QString note = QDir::homePath() + u"/%1.txt"_s;
    QByteArray picture("\x89PNG\r\n\x1a\n");
    for (qint64 i = 0; i < 300000; ++i)
        picture += static_cast<char>(i * 7919 >> 3);
    QTest::newRow("terminal") << u"xterm"_s
                              << QStringList{u"-T"_s, u"note-terminal"_s, u"-e"_s,
                                             u"cat > "_s + note.arg(u"terminal"_s)}
                              << u"ctrl+d"_s << u"UTF8_STRING"_s << u"kept: ⌘ שלום 🙂"_s.toUtf8();
    QTest::newRow("GTK editor") << u"mousepad"_s << QStringList{note.arg(u"GTK editor"_s)} << u"ctrl+s"_s
                                << u"image/png"_s << picture;
    QTest::newRow("Qt editor") << u"featherpad"_s << QStringList{u"--standalone"_s, note.arg(u"Qt editor"_s)}
                               << u"ctrl+s"_s << u"text/html"_s << QByteArray("<b>kept</b>");
}

void DictationTest::textArrivesWhereTheCursorIs()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    QFETCH(QString, clipboardType);
    QFETCH(QByteArray, clipboardData);
    QFETCH(QString, saving);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    const QString path = QDir::homePath() + u"/%1.txt"_s.arg(name);
    {
        QFile note(path);
        QVERIFY(note.open(QIODevice::WriteOnly));
    }
    QProcess *editor = m_desk->open(program, arguments);
    QVERIFY2(m_desk->focusWindow(program == "xterm"_L1 ? u"note-terminal"_s : name), editor->readAll().constData());
    m_desk->copy(clipboardType, clipboardData);
    const qsizetype before = m_desk->history().size();

    QVERIFY(m_desk->dictate(longClip));

    const QJsonObject record = m_desk->history().first().toObject();
    QCOMPARE(m_desk->history().size(), before + 1);
    const QString text = record.value("text"_L1).toString();
    if (program == "xterm"_L1)
        m_desk->press(u"Return"_s);
    m_desk->press(saving);
    QVERIFY2(Desk::eventually([&] { return readText(path) == text; }), qPrintable(readText(path)));
    QCOMPARE(m_desk->clipboard(clipboardType), clipboardData);

    const double errors = wordErrorRate(Desk::transcriptOf(longClip), text);
    QVERIFY2(errors < 0.5, qPrintable(text));
    QCOMPARE(record.value("providerRaw"_L1).toString(), u"sayvane"_s);
    QVERIFY(record.value("transcribeMs"_L1).toInteger() > 0);
    QVERIFY(m_desk->recordings().isEmpty());
    editor->terminate();
    QVERIFY(editor->waitForFinished() || editor->state() == QProcess::NotRunning);
}

void DictationTest::escapeCancelsAndIsNotTyped()
{
    const qsizetype before = m_desk->history().size();
    m_desk->pressShortcut();
    QVERIFY(m_desk->logsNext("flow: recording"));
    m_desk->say(shortClip);
    m_desk->press(u"Escape"_s);
    QVERIFY(m_desk->logsNext("flow: idle"));
    QVERIFY(m_desk->recordings().isEmpty());
    QCOMPARE(m_desk->history().size(), before);
}

void DictationTest::aServiceThatIsGoneIsToldAndNothingIsPasted()
{
    const QByteArray listed = m_desk->run(u"pgrep"_s, {u"-f"_s, u"sayvane-service.*"_s + m_desk->profileFolder()});
    const auto service = static_cast<pid_t>(listed.trimmed().split('\n').first().toInt());
    QVERIFY(service > 1);
    m_desk->copy(u"UTF8_STRING"_s, "untouched");
    QCOMPARE(::kill(service, SIGKILL), 0);
    m_desk->pressShortcut();
    QVERIFY(m_desk->logsNext("flow: recording"));
    m_desk->say(shortClip);
    m_desk->pressShortcut();
    QVERIFY(m_desk->logsNext("warning com.sayvane.app.flow: "));
    QVERIFY(m_desk->logsNext("flow: idle"));
    QCOMPARE(m_desk->clipboard(u"UTF8_STRING"_s), "untouched");
    QVERIFY(m_desk->recordings().isEmpty());
    // The next start has a service again.
    m_desk->stopSayvane();
    QVERIFY(m_desk->startSayvane());
}

void DictationTest::endingWhileRecordingLeavesNothingBehind()
{
    m_desk->pressShortcut();
    QVERIFY(m_desk->logsNext("flow: recording"));
    QCOMPARE(m_desk->recordings().size(), 1);
    m_desk->stopSayvane();
    QVERIFY(m_desk->recordings().isEmpty());
    QVERIFY(!QFileInfo::exists(QDir::homePath() + u"/.config/sayvane"_s));
    QVERIFY(!QFileInfo::exists(QDir::homePath() + u"/.local/share/Sayvane"_s));
    QVERIFY2(m_desk->run(u"pgrep"_s, {u"-f"_s, m_desk->profileFolder()}).isEmpty(), "a process was left behind");
    QVERIFY(m_desk->startSayvane());
}

void DictationTest::aDyingSoundServerKeepsWhatItHeard()
{
    const qsizetype before = m_desk->history().size();
    m_desk->pressShortcut();
    QVERIFY(m_desk->logsNext("flow: recording"));
    m_desk->say(longClip);
    const auto server = static_cast<pid_t>(qEnvironmentVariableIntValue("SESSION_PULSE_PID"));
    QVERIFY(server > 1);
    QCOMPARE(::kill(server, SIGKILL), 0);
    m_desk->pressShortcut();
    QVERIFY(m_desk->logsNext("flow: idle"));
    QCOMPARE(m_desk->history().size(), before + 1);
    const QString text = m_desk->history().first().toObject().value("text"_L1).toString();
    QVERIFY2(wordErrorRate(Desk::transcriptOf(longClip), text) < 0.6, qPrintable(text));
    // Without a server there is no microphone any more.
    m_desk->pressShortcut();
    QVERIFY(m_desk->logsNext("No microphone found"));
}

QTEST_GUILESS_MAIN(DictationTest)
#include "DictationTest.moc"
