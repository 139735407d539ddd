#include "cloud/speech/MultipartBody.h"

#include <QTemporaryFile>

#include <benchmark/benchmark.h>

#include <cstring>

namespace {

// A recording of 570 seconds.
constexpr qsizetype recordingBytes = 44 + qsizetype{570} * 32000;

void uploadBody(benchmark::State &state)
{
    QTemporaryFile file;
    if (!file.open())
        return state.SkipWithError("no file");
    file.write(QByteArray(recordingBytes, 'x'));
    file.flush();
    for (auto _ : state) {
        const auto body = MultipartBody::build({{"language", QStringLiteral("en")}}, file.fileName());
        benchmark::DoNotOptimize(body->bytes.constData());
    }
    state.SetBytesProcessed(state.iterations() * recordingBytes);
}

void plainCopy(benchmark::State &state)
{
    const QByteArray source(recordingBytes, 'x');
    for (auto _ : state) {
        QByteArray copy(recordingBytes, Qt::Uninitialized);
        std::memcpy(copy.data(), source.constData(), recordingBytes);
        benchmark::DoNotOptimize(copy.constData());
    }
    state.SetBytesProcessed(state.iterations() * recordingBytes);
}

} // namespace

BENCHMARK(uploadBody)->Unit(benchmark::kMillisecond);
BENCHMARK(plainCopy)->Unit(benchmark::kMillisecond);
