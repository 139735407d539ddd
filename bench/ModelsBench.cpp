#include "cloud/speech/ChatRequest.h"
#include "cloud/speech/ModelResolver.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <benchmark/benchmark.h>

namespace {

const QString transcript =
    QStringLiteral("um the shop opens next week and we should tell everybody before Friday ").repeated(20);

void cleanupBody(benchmark::State &state)
{
    const QString prompt = CleanupPrompt::with(QStringLiteral("Tobin, Maren"));
    for (auto _ : state)
        benchmark::DoNotOptimize(ChatRequest::body(ChatRequest::Form::full, Provider::groq,
                                                   QStringLiteral("openai/gpt-oss-120b"), prompt,
                                                   transcript));
}

void cleanupAnswer(benchmark::State &state)
{
    const QJsonObject message{{QStringLiteral("content"), QStringLiteral("<think>a</think>\n") + transcript}};
    const QJsonObject choice{{QStringLiteral("index"), 0}, {QStringLiteral("message"), message}};
    const QByteArray json =
        QJsonDocument(QJsonObject{{QStringLiteral("choices"), QJsonArray{choice}}}).toJson();
    for (auto _ : state) {
        const auto answer = ChatRequest::answer(json, transcript);
        benchmark::DoNotOptimize(ChatRequest::withoutReasoning(*answer).trimmed());
    }
}

/// The longest look: the user's model is gone, and what is left of ten thousand matches the last preference.
void resolveAmongTenThousand(benchmark::State &state)
{
    QStringList ids;
    for (int i = 0; i < 10000; ++i)
        ids.append(QStringLiteral("owner/mixtral-%1x%2b-instruct").arg(i).arg(7 + i % 90));
    for (auto _ : state)
        benchmark::DoNotOptimize(ModelResolver::resolve(ModelPurpose::chat, Provider::groq, ids,
                                                        QStringLiteral("llama-3.1-8b-instant")));
}

} // namespace

BENCHMARK(cleanupBody)->Unit(benchmark::kMicrosecond);
BENCHMARK(cleanupAnswer)->Unit(benchmark::kMicrosecond);
BENCHMARK(resolveAmongTenThousand)->Unit(benchmark::kMillisecond);
