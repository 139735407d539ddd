#include "platform/linux/system/LogFormat.h"
#include "platform/linux/system/LogRepeats.h"

#include <QLoggingCategory>
#include <QTemporaryFile>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(ours, "com.sayvane.app.history")
Q_LOGGING_CATEGORY(theirs, "qt.network.ssl")

class LogFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMessageIsOneLine_data()
    {
        QTest::addColumn<LogFormat::Sink>("sink");
        QTest::addColumn<QtMsgType>("type");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QByteArray>("line");
        const auto terminal = LogFormat::Sink::terminal;
        QTest::newRow("terminal")
            << terminal << QtWarningMsg << u"A gr\u00fc\u00df."_s
            << QByteArray("2026-01-02T03:04:05.006Z warning com.sayvane.app.x: A gr\xC3\xBC\xC3\x9F.\n");
        QTest::newRow("journal") << LogFormat::Sink::journal << QtCriticalMsg << u"A."_s
                                 << QByteArray("<3>error com.sayvane.app.x: A.\n");
        QTest::newRow("two lines") << terminal << QtInfoMsg << u"A.\nB."_s
                                   << QByteArray(
                                          "2026-01-02T03:04:05.006Z info com.sayvane.app.x: A. | B.\n");
        QTest::newRow("escape") << terminal << QtDebugMsg << u"\u001b[31mred\r"_s
                                << QByteArray(
                                       "2026-01-02T03:04:05.006Z debug com.sayvane.app.x:  [31mred \n");
    }

    void aMessageIsOneLine()
    {
        QFETCH(LogFormat::Sink, sink);
        QFETCH(QtMsgType, type);
        QFETCH(QString, message);
        QFETCH(QByteArray, line);
        const QDateTime time(QDate(2026, 1, 2), QTime(5, 4, 5, 6), Qt::OffsetFromUTC, 7200);
        QCOMPARE((LogFormat{sink}.line(type, "com.sayvane.app.x", message, time)), line);
    }

    void aTroubleThatLastsIsToldOnce()
    {
        using namespace std::chrono_literals;
        LogRepeats repeats;
        const LogRepeats::Time start;
        const auto tells = [&](QtMsgType type, const QString &message, std::chrono::seconds time) {
            return repeats.isNews(type, "hotkey", message, start + time);
        };
        QVERIFY(tells(QtWarningMsg, u"held"_s, 0s));
        QVERIFY(tells(QtWarningMsg, u"other"_s, 1s));
        for (auto time = 2s; time <= 600s; time += 2s)
            QVERIFY(!tells(QtWarningMsg, u"held"_s, time));
        QVERIFY(tells(QtWarningMsg, u"held"_s, 604s)); // it was away
        QVERIFY(tells(QtInfoMsg, u"recording"_s, 604s));
        QVERIFY(tells(QtInfoMsg, u"recording"_s, 604s));
    }

    void theInstalledLogShowsOursAndOthersWarnings()
    {
        QTemporaryFile file;
        QVERIFY(file.open());
        struct stat facts = {};
        QCOMPARE(fstat(file.handle(), &facts), 0);
        const int usual = dup(STDERR_FILENO);
        dup2(file.handle(), STDERR_FILENO);
        qputenv("JOURNAL_STREAM",
                QByteArray::number(quint64(facts.st_dev)) + ':' + QByteArray::number(quint64(facts.st_ino)));
        const QtMessageHandler before = qInstallMessageHandler(nullptr);
        installLog();
        qCDebug(ours) << "1";
        qCInfo(ours) << "2";
        qCInfo(theirs) << "3";
        qCWarning(theirs) << "4";
        qInstallMessageHandler(before);
        QLoggingCategory::setFilterRules({});
        dup2(usual, STDERR_FILENO);
        close(usual);
        QVERIFY(file.seek(0));
        QCOMPARE(file.readAll(), "<6>info com.sayvane.app.history: 2\n<4>warning qt.network.ssl: 4\n");
    }
};

QTEST_GUILESS_MAIN(LogFormatTest)
#include "LogFormatTest.moc"
