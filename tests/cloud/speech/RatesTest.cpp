#include "cloud/speech/Rates.h"

#include <QTest>

using namespace Qt::StringLiterals;

class RatesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pricesTranscription_data();
    void pricesTranscription();
    void pricesCleanup();
};

void RatesTest::pricesTranscription_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<Provider>("provider");
    QTest::addColumn<double>("perHour");
    const auto row = [](const char *name, const QString &model, Provider provider, double perHour) {
        QTest::newRow(name) << model << provider << perHour;
    };
    row("turbo", u"whisper-large-v3-turbo"_s, Provider::groq, 0.04);
    row("in capitals, with spaces", u" Whisper-Large-V3\n"_s, Provider::openai, 0.111);
    row("the longest name within", u"me/whisper-large-v3-turbo-x"_s, Provider::openai, 0.04);
    row("openai, mini", u"gpt-4o-mini-transcribe-2025"_s, Provider::groq, 0.18);
    row("openai", u"gpt-4o-transcribe"_s, Provider::sayvane, 0.36);
    row("classic", u"whisper-1"_s, Provider::sayvane, 0.36);
    row("unknown, groq", u"whisper"_s, Provider::groq, 0.04);
    row("blank, openai", u" "_s, Provider::openai, 0.18);
    row("unknown, service", u"whisper"_s, Provider::sayvane, 0);
}

void RatesTest::pricesTranscription()
{
    QFETCH(QString, model);
    QFETCH(Provider, provider);
    QTEST(Rates::transcriptionUSD(3600, model, provider), "perHour");
    QCOMPARE(Rates::transcriptionUSD(-1, model, provider), 0.0);
}

void RatesTest::pricesCleanup()
{
    const auto price = [](qint64 words, const QString &model, Provider provider) {
        return Rates::chatUSD(words, model, provider);
    };
    QCOMPARE(price(100, u"gpt-4o-mini"_s, Provider::openai), 0.000144);
    QCOMPARE(price(0, u"gpt-4o-mini"_s, Provider::openai), 250 * 0.15 / 1e6);
    QCOMPARE(price(100, u"OpenAI/gpt-oss-20b "_s, Provider::groq), (400 * 0.075 + 140 * 0.30) / 1e6);
    QCOMPARE(price(100, u"llama"_s, Provider::groq), 0.000144);
    QCOMPARE(price(100, u"llama"_s, Provider::sayvane), 0.0);
}

QTEST_APPLESS_MAIN(RatesTest)
#include "RatesTest.moc"
