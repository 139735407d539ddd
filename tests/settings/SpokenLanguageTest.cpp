#include "settings/SpokenLanguage.h"

#include <QTest>

using namespace Qt::StringLiterals;

class SpokenLanguageTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesALanguage_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isListed");
        QTest::newRow("automatic") << u""_s << u"Auto-detect"_s << true;
        QTest::newRow("only blanks") << u" \n"_s << u"Auto-detect"_s << false;
        QTest::newRow("listed") << u"pa"_s << u"Punjabi"_s << true;
        QTest::newRow("capitals and blanks") << u" GU\n"_s << u"Gujarati"_s << false;
        QTest::newRow("unlisted") << u"ne"_s << u"NE"_s << false;
        QTest::newRow("unlisted with blanks") << u" xx "_s << u"XX"_s << false;
        QTest::newRow("a name is no code") << u"English"_s << u"ENGLISH"_s << false;
    }
    void namesALanguage()
    {
        QFETCH(QString, code);
        QTEST(SpokenLanguage::nameFor(code), "name");
        QTEST(SpokenLanguage::isListed(code), "isListed");
    }

    void offersItsLanguagesInOrder()
    {
        QStringList codes;
        for (const SpokenLanguage &language : SpokenLanguage::all())
            codes.append(language.code);
        QCOMPARE(codes.join(u' '), u" en gu hi pa ur mr ta bn es fr de pt ar"_s);
    }
};

QTEST_APPLESS_MAIN(SpokenLanguageTest)
#include "SpokenLanguageTest.moc"
