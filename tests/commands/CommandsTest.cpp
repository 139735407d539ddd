#include "commands/CommandLine.h"
#include "commands/HistoryTable.h"
#include "control/ControlInterface.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

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
    row("--store-secret groq_api_key", {});
    row("tickle", u"There is no command 'tickle'."_s);
    row("--loud", u"Unknown option 'loud'."_s);
    row("toggle twice", u"Unexpected argument 'twice'."_s);
    row("transcribe", u"'transcribe' takes FILE.wav."_s);
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
    for (const QString &shell : {u"sayvane.bash"_s, u"_sayvane"_s, u"sayvane.fish"_s,
                                 u"../../docs/man/sayvane.1"_s}) {
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

QTEST_GUILESS_MAIN(CommandsTest)
#include "CommandsTest.moc"
