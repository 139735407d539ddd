#include "dictation/FlowText.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class FlowTextTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shortensDetails_data()
    {
        QTest::addColumn<QString>("detail");
        QTest::addColumn<QString>("expected");
        const QString family = u"👨‍👩‍👧"_s;
        QTest::newRow("empty") << u""_s << u"unknown error"_s;
        QTest::newRow("blank") << u" \n\t"_s << u"unknown error"_s;
        QTest::newRow("on one line") << u"a\nb\n"_s << u"a b"_s;
        QTest::newRow("90 characters") << u"x"_s.repeated(90) << u"x"_s.repeated(90);
        QTest::newRow("91 characters") << u"x"_s.repeated(91) << u"x"_s.repeated(89) + u'…';
        QTest::newRow("blanks before the cut") << u"x"_s.repeated(87) + u"  yyyy"_s << u"x"_s.repeated(87) + u'…';
        QTest::newRow("90 emoji are 90 characters") << family.repeated(90) << family.repeated(90);
        QTest::newRow("emoji are not cut apart") << family.repeated(200) << family.repeated(89) + u'…';
    }
    void shortensDetails()
    {
        QFETCH(QString, detail);
        QTEST(FlowText::shortened(detail), "expected");
    }

    void roundsHalvesAwayFromZero()
    {
        QCOMPARE(FlowText::elapsedMilliseconds(1499999ns), 1);
        QCOMPARE(FlowText::elapsedMilliseconds(1500000ns), 2);
        QCOMPARE(FlowText::elapsedMilliseconds(2500000ns), 3);
        QCOMPARE(FlowText::elapsedMilliseconds(3600s), 3600000);
    }
};

QTEST_APPLESS_MAIN(FlowTextTest)
#include "FlowTextTest.moc"
