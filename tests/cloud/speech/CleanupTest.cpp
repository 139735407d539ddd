#include "cloud/speech/SpeechFixture.h"

#include "cloud/speech/ChatRequest.h"
#include "cloud/speech/SpeechFailure.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QString spoken = u"um one two three"_s;

QByteArray choice(const QString &content)
{
    return QJsonDocument(QJsonObject{{u"choices"_s,
                                      QJsonArray{QJsonObject{{u"message"_s, QJsonObject{{u"content"_s, content}}}}}}})
        .toJson();
}

QJsonObject bodyOf(const HttpRequest &request)
{
    return QJsonDocument::fromJson(request.body).object();
}

} // namespace

class CleanupTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<SpeechFixture>(); }
    void cleanup() { m.reset(); }

    void thePromptIsTheAgreedOne();
    void asksInTheModelsForm_data();
    void asksInTheModelsForm();
    void asksAgainInTheMinimalForm_data();
    void asksAgainInTheMinimalForm();
    void aReplacedModelIsAskedInTheMinimalForm();
    void readsTheAnswer_data();
    void readsTheAnswer();
    void asksTheService();

private:
    std::unique_ptr<SpeechFixture> m;
};

void CleanupTest::thePromptIsTheAgreedOne()
{
    QCOMPARE(QCryptographicHash::hash(CleanupPrompt::fixedText, QCryptographicHash::Sha256).toHex(),
             "83524066b23563681ff61d673c96c401887c3e82a5f75fb73a37cf9cb138efce");
    const QString fixed = QString::fromUtf8(CleanupPrompt::fixedText);
    for (const QString &vocabulary : {u""_s, u" \n"_s, u"\nTobin, Maren "_s}) {
        m->set(u"vocabulary"_s, vocabulary);
        m->cleanUp(spoken);
        const QString suffix =
            u"\n\nNames and terms that may have been misheard, with their correct spelling: Tobin, Maren"_s;
        const QJsonArray expected{
            QJsonObject{{u"role"_s, u"system"_s}, {u"content"_s, vocabulary.contains(u'T') ? fixed + suffix : fixed}},
            QJsonObject{{u"role"_s, u"user"_s}, {u"content"_s, spoken}}};
        QCOMPARE(bodyOf(m->http().requests.last()).value(u"messages"_s).toArray(), expected);
    }
}

void CleanupTest::asksInTheModelsForm_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<QString>("model");
    QTest::addColumn<QByteArray>("parameters");
    const QByteArray usual = R"("temperature":0.2,"max_tokens":4096)";
    const QByteArray family = R"("max_completion_tokens":4096)";
    const QByteArray effort = R"(,"reasoning_effort":"low")";
    const auto row = [](const QString &provider, const QString &model, const QByteArray &parameters) {
        QTest::newRow(qPrintable(provider + u' ' + model)) << provider << model << parameters;
    };
    row(u"openai"_s, u"gpt-4o"_s, usual);
    row(u"openai"_s, u" GPT-5 "_s, family);
    row(u"openai"_s, u"owner/gpt-5.1/"_s, family);
    row(u"openai"_s, u"my-gpt-5"_s, usual);
    row(u"openai"_s, u"openai/gpt-oss-120b"_s, usual);
    row(u"groq"_s, u"openai/gpt-oss-120b"_s, usual + effort);
    row(u"groq"_s, u"gpt-5-gpt-oss"_s, family + effort);
}

void CleanupTest::asksInTheModelsForm()
{
    QFETCH(QString, provider);
    QFETCH(QString, model);
    QFETCH(QByteArray, parameters);
    m->choose(provider);
    m->set(u"chatModel"_s, model);
    m->cleanUp(spoken);
    const HttpRequest request = m->http().requests.first();
    const bool isGroq = provider == u"groq";
    QCOMPARE(request.url.toString(), isGroq ? u"https://api.groq.com/openai/v1/chat/completions"_s
                                            : u"https://api.openai.com/v1/chat/completions"_s);
    QCOMPARE(request.method, "POST");
    QVERIFY(request.timeout == std::chrono::seconds(60) && request.largestAnswer == 1 << 20);
    QCOMPARE(request.headers,
             (QList<std::pair<QByteArray, QByteArray>>{{"Authorization", isGroq ? "Bearer gsk_1" : "Bearer sk-1"},
                                                       {"Content-Type", "application/json"}}));
    QJsonObject body = bodyOf(request);
    body.remove(u"messages"_s);
    QJsonObject expected = QJsonDocument::fromJson("{" + parameters + "}").object();
    expected.insert(u"model"_s, model);
    QCOMPARE(body, expected);
}

void CleanupTest::asksAgainInTheMinimalForm_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("isParameter");
    const auto row = [](const QString &message, bool isParameter) {
        QTest::newRow(qPrintable(message)) << message << isParameter;
    };
    row(u"Reasoning_effort is unsupported"_s, true);
    row(u"max_tokens: additional properties"_s, true);
    row(u"unsupported value: 0.2"_s, true);
    row(u"temperature"_s, false);
    row(u"unsupported"_s, false);
}

void CleanupTest::asksAgainInTheMinimalForm()
{
    QFETCH(QString, message);
    QFETCH(bool, isParameter);
    QCOMPARE(ProviderFailure::mentionsRejectedParameter(message), isParameter);
    m->cleanUp(spoken);
    m->answerJson({{u"error"_s, QJsonObject{{u"message"_s, message}}}}, 400);
    QCOMPARE(m->outcome(), isParameter ? u"waiting"_s : u"! Groq: "_s + message);
    if (!isParameter)
        return;
    QCOMPARE(bodyOf(m->http().requests.last()).keys(), (QStringList{u"messages"_s, u"model"_s}));
    m->http().answer(200, choice(u"One two three."_s));
    QCOMPARE(m->outcome(), u"One two three."_s);
    m->cleanUp(spoken);
    for (int i = 0; i < 2; ++i) // and there is no third form
        m->answerJson({{u"error"_s, QJsonObject{{u"message"_s, message}}}}, 400);
    QCOMPARE(m->outcome(), u"! Groq: "_s + message);
}

void CleanupTest::aReplacedModelIsAskedInTheMinimalForm()
{
    m->http().willAnswer(404, R"({"error":{"message":"model decommissioned"}})");
    m->http().willAnswer(200, R"({"data":[{"id":"llama-guard-1b"},{"id":"llama-8b"}]})");
    m->http().willAnswer(400, R"({"error":{"message":"unsupported value"}})");
    m->http().willAnswer(200, choice(u"Done."_s));
    m->cleanUp(spoken);
    QCOMPARE(m->outcome(), u"Done."_s);
    QCOMPARE(bodyOf(m->http().requests.last()).value(u"model"_s).toString(), u"llama-8b"_s);
    QCOMPARE(m->prefs.chatModel(), u"llama-8b"_s);
}

void CleanupTest::readsTheAnswer_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("provider");
    const QString unreadable = u"! The answer could not be read."_s;
    const auto row = [](const char *name, const QByteArray &body, const QString &outcome,
                        const QString &provider = u"groq"_s) { QTest::newRow(name) << body << outcome << provider; };
    const auto text = [&](const char *name, const QString &content, const QString &outcome) {
        row(name, choice(content), outcome);
    };
    text("trimmed", u"\n Hi. \u2028"_s, u"Hi."_s);
    text("blank", u" \n"_s, spoken);
    text("reasoning first", u"<think>hm\nhm</think>\n\nHi."_s, u"Hi."_s);
    text("a block that forms when another goes", u"<th<think>a</think>ink>b</think>Hi."_s, u"Hi."_s);
    text("an opening within", u"<think>a<think>b</think>c</think>Hi."_s, u"c</think>Hi."_s);
    text("closed twice", u"Hi.</think> <think>a</think></think>"_s, u"Hi.</think> </think>"_s);
    text("another letter case", u"<Think>a</think> Hi."_s, u"<Think>a</think> Hi."_s);
    text("mixed scripts", u"<think>શું</think>\u2003હું Friday સુધીમાં मोकलीश 👩\u200d💻.\r\n"_s,
         u"હું Friday સુધીમાં मोकलीश 👩\u200d💻."_s);
    text("a great many blocks", u"<think>a</think>"_s.repeated(200000) + u"Hi."_s, u"Hi."_s);
    text("unclosed after text", u"Hi. <think>hm"_s, u"Hi."_s);
    row("no choice", R"({"choices":[]})", spoken);
    row("the first of two", R"({"choices":[{"message":{"content":"a"}},{"message":{"content":"b"}}]})", u"a"_s);
    row("the second without content", R"({"choices":[{"message":{"content":"a"}},{"message":{}}]})", unreadable);
    row("content null", R"({"choices":[{"message":{"content":null}}]})", unreadable);
    row("a web page", "<html>", unreadable);
    const QString service = u"sayvane"_s;
    row("service, trimmed", R"({"text":" Hi.\n","model":"m","skipped":true})", u"Hi."_s, service);
    row("service, reasoning stays", R"({"text":"<think>a</think>"})", u"<think>a</think>"_s, service);
    row("service, blank", R"({"text":" \n"})", spoken, service);
    row("service, missing", "{}", spoken, service);
    row("service, a number", R"({"text":5})", unreadable, service);
    row("service, a web page", "<html>", unreadable, service);
    row("invalid UTF-8", "{\"choices\":[{\"message\":{\"content\":\"\xFF\"}}]}", unreadable);
}

void CleanupTest::readsTheAnswer()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, provider);
    m->choose(provider);
    m->http().willAnswer(200, body);
    m->cleanUp(spoken);
    QTEST(m->outcome(), "outcome");
}

void CleanupTest::asksTheService()
{
    m->choose(u"sayvane"_s);
    m->set(u"accountBaseURL"_s, u" https://own.test/base/ "_s);
    m->set(u"language"_s, u" \t"_s);
    m->set(u"vocabulary"_s, u"\n"_s);
    m->cleanUp(spoken);
    QCOMPARE(bodyOf(m->http().requests.last()), (QJsonObject{{u"text"_s, spoken}}));
    m->set(u"language"_s, u" gu "_s);
    m->set(u"vocabulary"_s, u"\nTobin \n"_s);
    m->cleanUp(spoken);
    const HttpRequest request = m->http().requests.last();
    QCOMPARE(request.url.toString(), u"https://own.test/base/v1/cleanup"_s);
    QCOMPARE(request.headers, (QList<std::pair<QByteArray, QByteArray>>{{"Authorization", "Bearer svs_1"},
                                                                        {"Content-Type", "application/json"}}));
    QVERIFY(request.method == "POST" && request.timeout == std::chrono::seconds(60));
    QCOMPARE(request.largestAnswer, 1 << 20);
    const QJsonObject expected{{u"text"_s, spoken}, {u"language"_s, u"gu"_s}, {u"vocabulary"_s, u"Tobin"_s}};
    QCOMPARE(bodyOf(request), expected);
}

QTEST_GUILESS_MAIN(CleanupTest)
#include "CleanupTest.moc"
