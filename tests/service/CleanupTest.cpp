#include "service/cleanup/Editor.h"
#include "service/text/Utf8.h"

#include <QTest>

/// The rules by which a dictated text is edited.
class CleanupTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void editsWhatWasDictated_data();
    void editsWhatWasDictated();
    void leavesCleanTextAlone_data();
    void leavesCleanTextAlone();
    void spellsTheUsersTerms_data();
    void spellsTheUsersTerms();
    void skipsOtherLanguages_data();
    void skipsOtherLanguages();
    void survivesLongText_data();
    void survivesLongText();

private:
    static QString edited(const QString &text, const QString &vocabulary = {})
    {
        return QString::fromStdString(Editor::edited(text.toStdString(), vocabulary.toStdString(), "en").text);
    }
};

void CleanupTest::editsWhatWasDictated_data()
{
    QTest::addColumn<QString>("dictated");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *dictated, const char *expected) {
        QTest::newRow(name) << QString::fromUtf8(dictated) << QString::fromUtf8(expected);
    };
    row("fillers and a false start", "so um I think we should uh we should ship it on Friday",
        "So I think we should ship it on Friday.");
    row("filler with commas", "We tried, um, twice", "We tried, twice.");
    row("filler ends the sentence", "I think, um. That is all", "I think. That is all.");
    row("emergency room", "take him to the ER now", "Take him to the ER now.");
    row("you know, set apart", "It was, you know, a long day", "It was a long day.");
    row("you know, meant", "do you know the way and I mean that", "Do you know the way and I mean that.");
    row("repeated on purpose", "she had had a very very long no no day", "She had had a very very long no no day.");
    row("telephone number", "call five five five one one two", "Call five five five one one two.");
    row("scratch that, begun anew", "the budget is twelve thousand scratch that the budget is fifteen thousand",
        "The budget is fifteen thousand.");
    row("the sentence before", "We met Bob. He is tall. Scratch that. He is short.", "We met Bob. He is short.");
    row("the last word", "send it to Bob delete that last word Alice", "Send it to Alice.");
    row("clause after a comma", "Hi Maren, I come on Tuesday, scratch that, Wednesday works",
        "Hi Maren, Wednesday works.");
    row("actually, don't write that",
        "tell Tobin the invoice is ready actually don't write that, tell him I'll call him tomorrow",
        "Tell him I'll call him tomorrow.");
    row("start again", "hello everyone this is about okay start again dear all the show is off",
        "Dear all the show is off.");
    row("nothing to take back", "ignore that, we are fine", "Ignore that, we are fine.");
    row("corrected day", "send it Tuesday, no, Wednesday", "Send it Wednesday.");
    row("no one", "there were two no one stayed", "There were two no one stayed.");
    row("new paragraph", "right the site is live new paragraph next week we start on the shop",
        "Right the site is live.\n\nNext week we start on the shop.");
    row("new line", "ten oak street new line springfield", "Ten oak street\nSpringfield.");
    row("full stop and question mark", "we won full stop did you see it question mark i did",
        "We won. Did you see it? I did.");
    row("comma", "bread comma milk and the oxford comma", "Bread, milk and the oxford comma.");
    row("capitals", "i'm sure i said it. on monday in december we may march as in (i)",
        "I'm sure I said it. On Monday in December we may march as in (i).");
    row("abbreviation", "bring e.g. apples to dr. smith at 5 p.m. sharp",
        "Bring e.g. apples to dr. smith at 5 p.m. sharp.");
    row("address at the end", "see https://example.com/a", "See https://example.com/a");
    row("only a filler", "um", "");
}

void CleanupTest::editsWhatWasDictated()
{
    QFETCH(QString, dictated);
    QFETCH(QString, expected);
    const QString once = edited(dictated);
    QCOMPARE(once, expected);
    QCOMPARE(edited(once), once);
}

void CleanupTest::leavesCleanTextAlone_data()
{
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *text) { QTest::newRow(name) << QString::fromUtf8(text); };
    row("letter", "Dear Bob,\n\nThanks for the deck: it's great. Could you send the rest?\n\nKind regards,\nMaren.");
    row("own spelling", "iPhone and eBay sell at example.com. npm2 too!");
    row("quotes", "He said “start again” twice, and (later) left…");
    row("right to left inside", "The sign says שלום and مرحبا to all who come.");
}

void CleanupTest::leavesCleanTextAlone()
{
    QFETCH(QString, text);
    QCOMPARE(edited(text), text);
}

void CleanupTest::spellsTheUsersTerms_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("vocabulary");
    QTest::addColumn<QString>("expected");
    QTest::newRow("joined") << "say vane works"
                            << "Sayvane"
                            << "Sayvane works.";
    QTest::newRow("short, not joined") << "put it in a box"
                                       << "Ina"
                                       << "Put it in a box.";
    QTest::newRow("two words") << "the acme corp. meeting"
                               << "ACME Corp"
                               << "The ACME Corp. meeting.";
    QTest::newRow("possessive") << "sayvane's shop"
                                << "Sayvane"
                                << "Sayvane's shop.";
    QTest::newRow("a term that sounds like a filler") << "write to um today"
                                                      << "Um"
                                                      << "Write to Um today.";
}

void CleanupTest::spellsTheUsersTerms()
{
    QFETCH(QString, text);
    QFETCH(QString, vocabulary);
    QFETCH(QString, expected);
    const QString once = edited(text, vocabulary);
    QCOMPARE(once, expected);
    QCOMPARE(edited(once, vocabulary), once);
}

void CleanupTest::skipsOtherLanguages_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("language");
    QTest::addColumn<bool>("skipped");
    const QString german = QStringLiteral("wir treffen uns um acht um acht am Bahnhof in Köln");
    QTest::newRow("German, not said") << german << "" << true;
    QTest::newRow("Gujarati as English") << QStringLiteral("હું  એટલે કે કાલે") << "en" << true;
    QTest::newRow("British") << QStringLiteral("We met at eight.") << "en-GB" << false;
}

void CleanupTest::skipsOtherLanguages()
{
    QFETCH(QString, text);
    QFETCH(QString, language);
    QFETCH(bool, skipped);
    const auto result = Editor::edited("\n " + text.toStdString() + " \n", "Bahnhof", language.toStdString());
    QCOMPARE(QString::fromStdString(result.text), text);
    QCOMPARE(result.skipped, skipped);
}

void CleanupTest::survivesLongText_data()
{
    QTest::addColumn<QString>("piece");
    for (const char *piece : {"um ", "we we ", "a b scratch that ", "new paragraph ", "five no six ", "say vane ",
                              "the 🎉um🎉 שלום ", "\"((", "\n"})
        QTest::newRow(piece) << QString::fromUtf8(piece);
}

void CleanupTest::survivesLongText()
{
    QFETCH(QString, piece);
    const std::string text = piece.repeated(200'000 / static_cast<int>(piece.size()) + 1).toStdString();
    const auto result = Editor::edited(text, "Sayvane, follow-up, a b c d", "en");
    QVERIFY(Utf8::isValid(result.text));
    QVERIFY(result.text.size() <= text.size() + 1);
}

QTEST_APPLESS_MAIN(CleanupTest)
#include "CleanupTest.moc"
