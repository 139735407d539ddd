#include "history/HistoryFile.h"

#include <QTest>
#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace {

const QUuid id(u"{3F2504E0-4F89-41D3-9A0C-0305E82C3301}"_s);
const QDateTime date(QDate(2026, 3, 1), QTime(9, 15, 42), QTimeZone::utc());

const QByteArray required =
    R"("id":"3F2504E0-4F89-41D3-9A0C-0305E82C3301","date":"2026-03-01T09:15:42Z","durationSeconds":2,)"
    R"("wordCount":1,"text":"a")";

} // namespace

class HistoryFileTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isLaidOutForReaders();
    void readsRecords_data();
    void readsRecords();
    void everyTextComesBack();
    void summarisesTheTiming();
};

void HistoryFileTest::isLaidOutForReaders()
{
    const Dictation full{.id = id,
                         .date = date.toTimeZone(QTimeZone("Asia/Kolkata")).addMSecs(900),
                         .durationSeconds = 2.25,
                         .wordCount = 2,
                         .text = u"a \"b\\\" /"_s,
                         .rawText = u"um\ta\nb"_s,
                         .transcribeMs = 1234,
                         .cleanupMs = 0,
                         .audioBytes = 72044,
                         .providerRaw = u"groq"_s,
                         .transcriptionModel = u"whisper"_s,
                         .chatModel = u"chat"_s};
    const Dictation sparse{.id = id, .date = date, .durationSeconds = 3, .wordCount = 0, .text = {}};
    const QByteArray expected = R"([
  {
    "id" : "3F2504E0-4F89-41D3-9A0C-0305E82C3301",
    "date" : "2026-03-01T09:15:42Z",
    "durationSeconds" : 2.25,
    "wordCount" : 2,
    "text" : "a \"b\\\" /",
    "rawText" : "um\ta\nb",
    "transcribeMs" : 1234,
    "cleanupMs" : 0,
    "audioBytes" : 72044,
    "providerRaw" : "groq",
    "transcriptionModel" : "whisper",
    "chatModel" : "chat"
  },
  {
    "id" : "3F2504E0-4F89-41D3-9A0C-0305E82C3301",
    "date" : "2026-03-01T09:15:42Z",
    "durationSeconds" : 3,
    "wordCount" : 0,
    "text" : ""
  }
])";
    QCOMPARE(HistoryFile::encode({full, sparse}), expected);
    const auto read = HistoryFile::decode(expected);
    QVERIFY2(read, read ? "" : qPrintable(read.error()));
    QCOMPARE(HistoryFile::encode(*read), expected);
    QCOMPARE(HistoryFile::decode(HistoryFile::encode({}))->size(), 0);
}

void HistoryFileTest::readsRecords_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<bool>("isReadable");
    const auto row = [](const char *name, const QByteArray &json, bool isReadable) {
        QTest::newRow(name) << json << isReadable;
    };
    const auto with = [](const QByteArray &from, const QByteArray &to) {
        return "[{" + QByteArray(required).replace(from, to) + "}]";
    };
    row("required fields alone", "[{" + required + "}]", true);
    row("optional fields null", "[{" + required + ",\"rawText\":null,\"cleanupMs\":null}]", true);
    row("another zone", with("09:15:42Z", "14:45:42+05:30"), true);
    for (const char *key : {"\"id\"", "\"date\"", "\"durationSeconds\"", "\"wordCount\"", "\"text\""})
        row(qPrintable(u"without "_s + QString::fromUtf8(key)), with(key, "\"x\""), false);
    row("fractional seconds", with("42Z", "42.5Z"), false);
    row("fractional minutes", with(":42Z", ",42Z"), false);
    row("date without zone", with("42Z", "42"), false);
    row("a day that never was", with("2026-03-01", "2026-02-30"), false);
    row("word count with a fraction", with("\"wordCount\":1", "\"wordCount\":1.5"), false);
    row("text as a number", with("\"text\":\"a\"", "\"text\":1"), false);
    row("optional number as text", "[{" + required + ",\"cleanupMs\":\"5\"}]", false);
    row("one bad record among good ones", "[{" + required + "},{},{" + required + "}]", false);
    row("an object on top", "{" + required + "}", false);
    row("invalid UTF-8", with("\"a\"", "\"\xFF\""), false);
}

void HistoryFileTest::readsRecords()
{
    QFETCH(QByteArray, json);
    const auto records = HistoryFile::decode(json);
    QTEST(records.has_value(), "isReadable");
    if (records && !records->isEmpty()) {
        QCOMPARE(records->first().id, id);
        QCOMPARE(records->first().date, date);
        QCOMPARE(records->first().rawText, std::nullopt);
    }
    if (!records)
        QVERIFY(!records.error().isEmpty());
}

void HistoryFileTest::everyTextComesBack()
{
    QString text;
    for (char16_t code = 0; code <= 0x20; ++code)
        text += QChar(code);
    text += QString(QChar(0xDE42)) + QChar(0xD83D); // halves in the wrong order
    text += u"🙂"_s + QChar(0xD83D);              // a pair after a half, and a half at the end
    const Dictation record{.id = id, .date = date, .text = text, .rawText = text};
    const auto read = HistoryFile::decode(HistoryFile::encode({record}));
    QVERIFY(read);
    QVERIFY(*read == QList{record});
}

void HistoryFileTest::summarisesTheTiming()
{
    const auto summary = [](std::optional<qint64> transcribeMs, std::optional<qint64> cleanupMs) {
        return Dictation{.transcribeMs = transcribeMs, .cleanupMs = cleanupMs}.timingSummary();
    };
    QCOMPARE(summary(1234, 560), u"1.2 s transcribe, 0.6 s cleanup"_s);
    QCOMPARE(summary(1250, 750), u"1.2 s transcribe, 0.8 s cleanup"_s);
    QCOMPARE(summary(61960, std::nullopt), u"62.0 s transcribe"_s);
    QCOMPARE(summary(std::nullopt, 560), std::nullopt);
}

QTEST_APPLESS_MAIN(HistoryFileTest)
#include "HistoryFileTest.moc"
