#include "machine/desktop/LogFormat.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class LogFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMessageIsOneLine()
    {
        const LogFormat format{LogFormat::Sink::journal};
        QCOMPARE(format.line(QtDebugMsg, "com.sayvane.app.x", u"A.\n\u001b[31mred\r"_s, {}),
                 "<7>debug com.sayvane.app.x: A. |  [31mred \n");
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
};

QTEST_GUILESS_MAIN(LogFormatTest)
#include "LogFormatTest.moc"
