#include "desktop/program/Desk.h"
#include "desktop/program/PanelStandIn.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

const QString program = QStringLiteral(PREFIX "/bin/sayvane");
const QString clip = u"sense_and_sensibility_01_austen_64kb-0880"_s;
const QString clipPath = u"/usr/share/pocketsphinx/test/data/librivox/"_s + clip + u".wav"_s;

struct Ended
{
    int status;
    QString output;
    QString errors;
};

Ended sayvane(const QStringList &words, const QByteArray &input = {}, bool hasDisplay = true)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!hasDisplay)
        environment.insert(u"DISPLAY"_s, u":250"_s);
    process.setProcessEnvironment(environment);
    process.start(program, QStringList{u"--profile"_s, u"run"_s} + words);
    process.write(input);
    process.closeWriteChannel();
    // The panel answers meanwhile.
    if (!Desk::eventually([&] { return process.state() == QProcess::NotRunning; }, 60000))
        return {-1, {}, u"did not end"_s};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

/// The program around the dictation: icon, command line, second starts, crashes.
class ShellTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_desk = std::make_unique<Desk>();
        QVERIFY(m_desk->startSayvane());
        QVERIFY(m_desk->dictate(clip));
    }
    void cleanupTestCase() { m_desk.reset(); }

    void theIconHasTheSizesOfPanels();
    void theRunningProgramAnswers_data();
    void theRunningProgramAnswers();
    void aSecondStartShowsTheWindow();
    void aCrashLosesNoRecording();
    void anOrderlyEndLosesNoRecording_data();
    void anOrderlyEndLosesNoRecording();
    void commandsWorkWithoutTheProgram_data(); // last: signs out
    void commandsWorkWithoutTheProgram();

private:
    std::unique_ptr<Desk> m_desk;
};

void ShellTest::theIconHasTheSizesOfPanels()
{
    const PanelStandIn panel;
    QVERIFY(Desk::eventually([&] { return !panel.item().isEmpty(); }));
    for (const int width : {16, 22, 24, 32, 48})
        QVERIFY2(panel.iconWidths().contains(width), qPrintable(QString::number(width)));
}

void ShellTest::theRunningProgramAnswers_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("output"); // a part of it; "last" stands for the last transcript
    QTest::addColumn<QString>("errors");
    QTest::newRow("help") << QStringList{u"--help"_s} << QByteArray() << 0 << u"Usage: sayvane"_s << QString();
    QTest::newRow("version") << QStringList{u"--version"_s} << QByteArray() << 0 << u"sayvane 0."_s << QString();
    QTest::newRow("start") << QStringList{u"start"_s} << QByteArray() << 0 << QString() << QString();
    QTest::newRow("status") << QStringList{u"status"_s} << QByteArray() << 0 << u"recording\n"_s << QString();
    QTest::newRow("doctor") << QStringList{u"doctor"_s} << QByteArray() << 1 << u"no tray        -\n   No panel"_s
                            << QString();
    QTest::newRow("nothing to undo while it runs")
        << QStringList{u"doctor"_s, u"--undo"_s} << QByteArray() << 75 << QString() << u"Quit it first."_s;
    QTest::newRow("cancel") << QStringList{u"cancel"_s} << QByteArray() << 0 << QString() << QString();
    QTest::newRow("status as JSON") << QStringList{u"status"_s, u"--json"_s} << QByteArray() << 0
                                    << u"\"state\": \"idle\""_s << QString();
    QTest::newRow("last") << QStringList{u"last"_s} << QByteArray() << 0 << u"last"_s << QString();
    QTest::newRow("history") << QStringList{u"history"_s} << QByteArray() << 0 << u"last"_s << QString();
    QTest::newRow("history as JSON") << QStringList{u"history"_s, u"--json"_s} << QByteArray() << 0 << u"last"_s
                                     << QString();
    QTest::newRow("history as CSV") << QStringList{u"history"_s, u"--csv"_s} << QByteArray() << 0 << u"last"_s
                                    << QString();
    for (const auto &[asked, told] : {std::pair{u""_s, u"off\n"_s},
                                      {u"on"_s, u"on\n"_s},
                                      {u""_s, u"on\n"_s},
                                      {u"off"_s, u"off\n"_s},
                                      {u""_s, u"off\n"_s}})
        QTest::addRow("autostart %s, %s", qPrintable(asked), qPrintable(told.trimmed()))
            << (asked.isEmpty() ? QStringList{u"autostart"_s} : QStringList{u"autostart"_s, asked}) << QByteArray() << 0
            << told << QString();
    QTest::newRow("transcribe") << QStringList{u"transcribe"_s, clipPath} << QByteArray() << 0 << u"last"_s
                                << QString();
    QTest::newRow("no recording") << QStringList{u"transcribe"_s, u"/none.wav"_s} << QByteArray() << 66 << QString()
                                  << u"/none.wav: No such file"_s;
    QTest::newRow("not a recording") << QStringList{u"transcribe"_s, u"/etc/passwd"_s} << QByteArray() << 1 << QString()
                                     << u"This is not a recording that can be read"_s;
    QTest::newRow("nothing to recover") << QStringList{u"recover"_s} << QByteArray() << 0 << QString() << QString();
    for (const auto &[asked, told] :
         {std::pair{QString(), u"off\n"_s}, {u"on"_s, u"on\n"_s}, {QString(), u"on\n"_s}, {u"off"_s, u"off\n"_s}})
        QTest::addRow("keep failed %s, %s", qPrintable(asked), qPrintable(told.trimmed()))
            << (QStringList{u"recover"_s, u"failed"_s, asked}.filter(QRegularExpression(u"."_s))) << QByteArray() << 0
            << told << QString();
    QTest::newRow("keep failed perhaps") << QStringList{u"recover"_s, u"failed"_s, u"perhaps"_s} << QByteArray() << 64
                                         << QString() << u"'recover failed' takes on or off."_s;
    QTest::newRow("no such recording") << QStringList{u"recover"_s, u"delete"_s, u"AB"_s} << QByteArray() << 66
                                       << QString() << u"There is no left recording AB."_s;
    QTest::newRow("sign-in") << QStringList{u"sign-in"_s} << QByteArray("nobody\n") << 1 << QString()
                             << u"That does not look like an email address."_s;
    QTest::newRow("no such section") << QStringList{u"open"_s, u"attic"_s} << QByteArray() << 1 << QString()
                                     << u"There is no section attic."_s;
    QTest::newRow("no such command") << QStringList{u"tickle"_s} << QByteArray() << 64 << QString()
                                     << u"There is no command 'tickle'."_s;
    QTest::newRow("a word too many") << QStringList{u"toggle"_s, u"now"_s} << QByteArray() << 64 << QString()
                                     << u"Unexpected argument 'now'."_s;
}

void ShellTest::theRunningProgramAnswers()
{
    QFETCH(QStringList, words);
    QFETCH(QByteArray, input);
    QFETCH(QString, output);
    QFETCH(QString, errors);
    if (output == "last"_L1)
        output = m_desk->history().first().toObject().value("text"_L1).toString();
    const Ended ended = sayvane(words, input);
    QVERIFY2(ended.output.contains(output), qPrintable(ended.output + ended.errors));
    QVERIFY2(ended.errors.contains(errors), qPrintable(ended.errors));
    QTEST(ended.status, "status");
}

void ShellTest::aSecondStartShowsTheWindow()
{
    // What looks damaged may be half of what the running program is about: it is that program's to judge.
    const QDir settings(QDir::homePath() + u"/.config/sayvane-run"_s);
    QFile preferences(settings.filePath(u"preferences.json"_s));
    QVERIFY(preferences.open(QIODevice::WriteOnly) && preferences.write("{\"half\"") == 7);
    preferences.close();
    QCOMPARE(sayvane({}).status, 0);
    QCOMPARE(sayvane({u"recover"_s}).status, 0);
    QCOMPARE(settings.entryList({u"preferences*"_s}), QStringList{u"preferences.json"_s});
    QVERIFY(m_desk->focusWindow(u"^Sayvane$"_s));
    QCOMPARE(sayvane({u"open"_s, u"labs"_s}).status, 0);
    QVERIFY(!m_desk->run(u"pgrep"_s, {u"-c"_s, u"-f"_s, program + u" --profile run$"_s}).startsWith("2"));
}

void ShellTest::aCrashLosesNoRecording()
{
    QCOMPARE(sayvane({u"toggle"_s}).status, 0);
    QVERIFY(m_desk->logsNext("flow: recording"));
    m_desk->say(clip);
    const QString name = u"app.sayvane.Sayvane1.profile_run"_s;
    const auto process = static_cast<pid_t>(QDBusConnection::sessionBus().interface()->servicePid(name).value());
    QVERIFY(process > 1);
    QCOMPARE(::kill(process, SIGKILL), 0);
    m_desk->stopSayvane();
    QCOMPARE(m_desk->recordings().size(), 1);
    const QDir temporary(qEnvironmentVariable("TMPDIR") + u"/sayvane-run-%1"_s.arg(getuid()));
    QFile torn(temporary.filePath(m_desk->recordings().first()));
    QVERIFY(torn.open(QIODevice::ReadWrite));
    QCOMPARE(torn.write(QByteArray(44, '\0')), 44);
    torn.close();
    // The computer may have another name by then, and another process the number.
    QFile lock(m_desk->profileFolder() + u"/Sayvane/instance.lock"_s);
    QVERIFY(lock.open(QIODevice::WriteOnly) && lock.write("1\nsayvane\nelsewhere\n") > 0);
    lock.close();

    QVERIFY(m_desk->startSayvane());
    QVERIFY(m_desk->recordings().isEmpty());
    const QString listed = sayvane({u"recover"_s}).output;
    QCOMPARE(listed.count(u'\n'), 1);
    const QString id = listed.section(u' ', 0, 0);
    const QString text = sayvane({u"recover"_s, u"transcribe"_s, id}).output.trimmed();
    QVERIFY2(text.split(u' ').size() > 3, qPrintable(text));
    const QFileInfoList kept = QDir(m_desk->profileFolder() + u"/Sayvane/recordings"_s).entryInfoList(QDir::Files);
    QCOMPARE(kept.size(), 1);
    QCOMPARE(kept.first().permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    QCOMPARE(sayvane({u"recover"_s, u"delete"_s, id}).status, 0);
    QVERIFY(sayvane({u"recover"_s}).output.isEmpty());
}

void ShellTest::anOrderlyEndLosesNoRecording_data()
{
    QTest::addColumn<bool>("isAsked");
    QTest::newRow("Quit") << true;
    QTest::newRow("SIGTERM") << false;
}

void ShellTest::anOrderlyEndLosesNoRecording()
{
    QFETCH(bool, isAsked);
    const QString name = u"app.sayvane.Sayvane1.profile_run"_s;
    const auto bus = QDBusConnection::sessionBus().interface();
    QVERIFY(bus->isServiceRegistered(name) || m_desk->startSayvane());
    QCOMPARE(sayvane({u"toggle"_s}).status, 0);
    QVERIFY(m_desk->logsNext("flow: recording"));
    m_desk->say(clip);
    if (isAsked)
        QCOMPARE(sayvane({u"quit"_s}).status, 0);
    else
        QCOMPARE(::kill(static_cast<pid_t>(bus->servicePid(name).value()), SIGTERM), 0);
    QVERIFY(Desk::eventually([&] { return !bus->isServiceRegistered(name).value(); }));
    m_desk->stopSayvane();
    QVERIFY(m_desk->recordings().isEmpty()); // it is where the next start of the machine leaves it alone
    const QString listed = sayvane({u"recover"_s}).output;
    QCOMPARE(listed.count(u'\n'), 1);
    QCOMPARE(sayvane({u"recover"_s, u"delete"_s, listed.section(u' ', 0, 0)}).status, 0);
}

void ShellTest::commandsWorkWithoutTheProgram_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("expected");
    for (const QString &verb : {u"toggle"_s, u"cancel"_s, u"status"_s, u"last"_s})
        QTest::newRow(qPrintable(verb)) << QStringList{verb} << 69 << u"Sayvane is not running."_s;
    QTest::newRow("history") << QStringList{u"history"_s} << 0 << QString();
    QTest::newRow("keep failed") << QStringList{u"recover"_s, u"failed"_s, u"on"_s} << 0 << QString();
    QTest::newRow("sign-out") << QStringList{u"sign-out"_s} << 0 << QString();
    QTest::newRow("transcribe") << QStringList{u"transcribe"_s, clipPath} << 1
                                << u"Sign in under Settings to start dictating"_s;
    QTest::newRow("no display") << QStringList() << 71 << u"The display :250 does not answer."_s;
}

void ShellTest::commandsWorkWithoutTheProgram()
{
    QFETCH(QStringList, words);
    QFETCH(QString, expected);
    const Ended ended = sayvane(words, {}, !words.isEmpty());
    QVERIFY2(ended.errors.contains(expected), qPrintable(ended.errors));
    QTEST(ended.status, "status");
}

QTEST_GUILESS_MAIN(ShellTest)
#include "ShellTest.moc"
