#include "preferences/SpokenLanguage.h"

#include <QTest>

using namespace Qt::StringLiterals;

class SpokenLanguageTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesALanguage()
    {
        QCOMPARE(SpokenLanguage::nameFor(u" \n"_s), u"Auto-detect"_s);
        QCOMPARE(SpokenLanguage::nameFor(u" GU\n"_s), u"Gujarati"_s);
        QCOMPARE(SpokenLanguage::nameFor(u" xx "_s), u"XX"_s);
        QVERIFY(SpokenLanguage::isListed(u""_s) && !SpokenLanguage::isListed(u" GU\n"_s));
    }
};

QTEST_APPLESS_MAIN(SpokenLanguageTest)
#include "SpokenLanguageTest.moc"
