#include "program/FlowFixture.h"

#include "dictation/FlowText.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// An answer, or why there is none; a test's row holds it.
struct Reply
{
    FakeTransport::Result result;
};

} // namespace

/// Whatever a provider answers, or does not, the user is told in one sentence and no words are lost.
class BadAnswersTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aBadAnswerIsToldAndLosesNothing_data();
    void aBadAnswerIsToldAndLosesNothing();
};

void BadAnswersTest::aBadAnswerIsToldAndLosesNothing_data()
{
    QTest::addColumn<Reply>("answer");
    QTest::addColumn<QString>("sentence");
    const auto http = [](int status, const QByteArray &body, const QString &sentence) {
        QTest::newRow(qPrintable(
            u"%1 %2 %3"_s.arg(status).arg(QString::fromLatin1(body.first(qMin(body.size(), 40)))).arg(body.size())))
            << Reply(HttpResponse{status, {{"Retry-After", "1"}}, body}) << sentence;
    };
    const QString unreadable = u"The answer could not be read."_s;
    for (const QByteArray &body :
         {QByteArray(), QByteArray("{}"), QByteArray("null"), QByteArray("{\"text\":\"half"),
          QByteArray("{\"text\":\"\xC3(\",\"choices\":[{\"message\":{\"content\":\"\xC3(\"}}]}"),
          QByteArray("[{\"text\":\"a\",\"choices\":[]}]"), QByteArray("<html>Sign in</html>"),
          QByteArray("{\"text\":[\"a\"],\"choices\":[{\"message\":{\"content\":[\"a\"]}}]}"), QByteArray(100000, '['),
          QByteArray(5, '\0')})
        http(200, body, unreadable);
    for (const int status : {0, 199, 300, 400, 403, 404, 408, 413, 415, 422, 429, 498, 500, 502, 503, 504, 599})
        http(status, {}, u"Groq: HTTP %1"_s.arg(status));
    for (const QByteArray &body :
         {QByteArray("no JSON"), QByteArray("<html>\xFF</html>"), QByteArray("[]"), QByteArray("{\"error\":\"text\"}"),
          QByteArray("{\"error\":null}"), QByteArray("{\"error\":[{\"message\":\"a\"}]}"),
          QByteArray("{\"message\":\"a\"}"), QByteArray("{\"error\":{\"message\":{\"a\":1}}}"),
          QByteArray("{\"error\":{\"message\":\"a\",\"code\":404}}"), QByteArray("{\"error\":{\"message\":\"\xFF\"}}"),
          QByteArray("{\"error\":{\"message\":\"half"), QByteArray("{\"error\":{}}")})
        http(400, body, u"Groq: HTTP 400"_s);
    http(401, "{\"error\":{\"message\":\"a\"}}", u"Groq: API key rejected. Check it in Settings."_s);
    http(400, "{\"error\":{\"message\":null,\"code\":\"too_long\"}}", u"Groq: too_long"_s);
    http(429, "{\"error\":{\"message\":\"મર્યાદા\\nreached\",\"code\":\"c\"}}", u"Groq: મર્યાદા\nreached"_s);
    http(500, "{\"error\":{\"message\":\"" + QByteArray(2'000'000, 'x') + "\"}}",
         u"Groq: "_s + QString(1000, u'x') + u'…');
    const auto silence = [](TransportError::Kind kind, const QString &message) {
        QTest::newRow(qPrintable(message)) << Reply(std::unexpected(TransportError{kind, message})) << message;
    };
    silence(TransportError::Kind::timedOut, u"api.groq.com did not answer in time."_s);
    silence(TransportError::Kind::other, u"api.groq.com closed the connection before its whole answer had arrived."_s);
}

void BadAnswersTest::aBadAnswerIsToldAndLosesNothing()
{
    QFETCH(Reply, answer);
    QFETCH(QString, sentence);
    FlowFixture m;
    m.machine.secrets.items.insert(u"groq_api_key"_s, "gsk_1");
    m.machine.defaults.values.insert(u"provider"_s, u"groq"_s);
    const auto deliver = [&] {
        if (answer.result || answer.result.error().kind != TransportError::Kind::timedOut)
            return m.machine.http.answer(answer.result);
        // As the network does after so much silence.
        const auto timer = m.machine.clock.after(m.machine.http.requests.last().timeout,
                                                 [&] { m.machine.http.answer(answer.result); });
        m.machine.clock.advance(59999ms);
        QCOMPARE(m.flow().state(), FlowState::processing);
        m.machine.clock.advance(1ms);
    };
    m.host();
    m.speak();
    deliver();
    QCOMPARE(m.flow().lastError(), sentence);
    QCOMPARE(m.flow().state(), FlowState::idle);
    QVERIFY(m.host().history().records().isEmpty() && m.machine.folders.recordings().isEmpty());
    QCOMPARE(m.machine.http.requests.size(), 1);

    const QString raw = u"હું um कल तुम्हें Friday 👩‍💻"_s;
    m.speak();
    m.answerText(raw + u"\n"_s);
    deliver();
    QCOMPARE(m.flow().lastError(), u"Pasted raw transcript. Cleanup failed: "_s + FlowText::shortened(sentence));
    m.finishPaste();
    QCOMPARE(m.machine.keyPoster.clipboardWhenPosted, QStringList{raw});
    const Dictation record = m.host().history().records().value(0);
    QCOMPARE(record.text, raw);
    QVERIFY(!record.rawText && !record.cleanupMs && !record.chatModel);
    QCOMPARE(record.transcriptionModel, u"whisper-large-v3-turbo"_s);
}

QTEST_GUILESS_MAIN(BadAnswersTest)
#include "BadAnswersTest.moc"
