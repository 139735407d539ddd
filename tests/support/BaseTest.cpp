#include "base/Json.h"
#include "base/Text.h"

#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

class BaseTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWholeNumbersOnly()
    {
        const auto none = std::optional<qint64>();
        for (const auto &[json, number] : {std::pair("-30", std::optional<qint64>(-30)),
                                           {"12.0", 12},
                                           {"9223372036854775807", 9223372036854775807},
                                           {"9223372036854775808", none},
                                           {"1e300", none},
                                           {"12.5", none},
                                           {"\"12\"", none},
                                           {"null", none}})
            QCOMPARE(Json::wholeNumber(QJsonDocument::fromJson('[' + QByteArray(json) + ']')[0]), number);
    }

    void countsWords()
    {
        for (const auto &[text, words] : {std::pair(u" \t \n "_s, 0),
                                          {u"one  two\nthree"_s, 3},
                                          {u"one\u00A0two\u3000three"_s, 3},
                                          {u"one\u2028two\u2029three\u0085four"_s, 4},
                                          {u"well-known, isn't it?"_s, 3},
                                          {u"👩‍👧 હું"_s, 2}})
            QCOMPARE(Text::wordCount(text), words);
    }

    void trimsBlanksButNoLineBreaks()
    {
        for (const auto &[text, trimmed] :
             {std::pair(u" \t\u00A0"_s, u""_s), {u"\t en \u3000"_s, u"en"_s}, {u" \n e n\n "_s, u"\n e n\n"_s}})
            QCOMPARE(Text::trimmedBlanks(text), trimmed);
    }

    void countsCharactersAsReadersDo()
    {
        struct Row
        {
            QString text;
            int characters;
            QString firstTwo;
        };
        for (const auto &[text, characters, firstTwo] :
             {Row{{}, 0, {}}, Row{u"a"_s, 1, u"a"_s}, Row{u"e\u0301xy"_s, 3, u"e\u0301x"_s},
              Row{u"👩‍👩‍👧‍👦👍🏽z"_s, 3, u"👩‍👩‍👧‍👦👍🏽"_s}}) {
            QCOMPARE(Text::characterCount(text), characters);
            QCOMPARE(Text::firstCharacters(text, 2), firstTwo);
            QCOMPARE(Text::firstCharacters(text, 0), QString());
            // The same at the start of a text of any length.
            QCOMPARE(Text::firstCharacters(text + u"|"_s + u"y\u0308"_s.repeated(100), characters), text);
        }
    }

    void anExcerptEndsWithACharacter()
    {
        for (const auto &[text, excerpt] : {std::pair(u"abcd"_s, u"abcd"_s),
                                            {u"abcde"_s, u"abcd…"_s},
                                            {u"abc🙂"_s, u"abc…"_s},
                                            {u"abce\u0301"_s, u"abc…"_s},
                                            {u"ab👍🏽"_s, u"ab…"_s},
                                            {u"e"_s + u"\u0301"_s.repeated(9), u"e\u0301\u0301\u0301…"_s},
                                            {u"👩‍👩‍👧‍👦"_s, u"👩\u200d…"_s}})
            QCOMPARE(Text::excerpt(text, 4), excerpt);
    }
};

QTEST_APPLESS_MAIN(BaseTest)
#include "BaseTest.moc"
