#include "base/Text.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TextTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsWords_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("words");
        QTest::newRow("empty") << u""_s << 0;
        QTest::newRow("only spaces") << u" \t \n "_s << 0;
        QTest::newRow("two spaces and a line break") << u"one  two\nthree"_s << 3;
        QTest::newRow("no-break and ideographic space") << u"one\u00A0two\u3000three"_s << 3;
        QTest::newRow("line and paragraph separator") << u"one\u2028two\u2029three\u0085four"_s << 4;
        QTest::newRow("punctuation parts nothing") << u"well-known, isn't it?"_s << 3;
        QTest::newRow("a zero-width joiner parts nothing") << u"👩‍👧 હું"_s << 2;
    }
    void countsWords()
    {
        QFETCH(QString, text);
        QTEST(Text::wordCount(text), "words");
    }

    void trimsBlanksButNoLineBreaks_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("trimmed");
        QTest::newRow("empty") << u""_s << u""_s;
        QTest::newRow("only blanks") << u" \t\u00A0"_s << u""_s;
        QTest::newRow("both ends") << u"\t en \u3000"_s << u"en"_s;
        QTest::newRow("inside stays") << u" a b "_s << u"a b"_s;
        QTest::newRow("line breaks stay") << u" \n en\n "_s << u"\n en\n"_s;
    }
    void trimsBlanksButNoLineBreaks()
    {
        QFETCH(QString, text);
        QTEST(Text::trimmedBlanks(text), "trimmed");
    }

    void countsCharactersAsReadersDo_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("characters");
        QTest::addColumn<QString>("firstTwo");
        QTest::newRow("empty") << u""_s << 0 << u""_s;
        QTest::newRow("fewer than asked for") << u"a"_s << 1 << u"a"_s;
        QTest::newRow("letters") << u"abc"_s << 3 << u"ab"_s;
        QTest::newRow("combining accent") << u"e\u0301xy"_s << 3 << u"e\u0301x"_s;
        QTest::newRow("family and skin tone")
            << u"👩‍👩‍👧‍👦👍🏽z"_s << 3 << u"👩‍👩‍👧‍👦👍🏽"_s;
    }
    void countsCharactersAsReadersDo()
    {
        QFETCH(QString, text);
        QTEST(Text::characterCount(text), "characters");
        QFETCH(int, characters);
        QTEST(Text::firstCharacters(text, 2), "firstTwo");
        QCOMPARE(Text::firstCharacters(text, 0), QString());
        // The same at the start of a text of any length.
        QCOMPARE(Text::firstCharacters(text + u"|"_s + u"y\u0308"_s.repeated(100), characters), text);
    }

    void anExcerptEndsWithACharacter_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("excerpt");
        QTest::newRow("fits") << u"abcd"_s << u"abcd"_s;
        QTest::newRow("longer") << u"abcde"_s << u"abcd…"_s;
        QTest::newRow("a pair of units in the way") << u"abc🙂"_s << u"abc…"_s;
        QTest::newRow("an accent in the way") << u"abce\u0301"_s << u"abc…"_s;
        QTest::newRow("a skin tone in the way") << u"ab👍🏽"_s << u"ab…"_s;
        QTest::newRow("one endless character") << u"e"_s + u"\u0301"_s.repeated(9) << u"e\u0301\u0301\u0301…"_s;
        QTest::newRow("one endless family") << u"👩‍👩‍👧‍👦"_s << u"👩\u200d…"_s;
    }
    void anExcerptEndsWithACharacter()
    {
        QFETCH(QString, text);
        QTEST(Text::excerpt(text, 4), "excerpt");
    }
};

QTEST_APPLESS_MAIN(TextTest)
#include "TextTest.moc"
