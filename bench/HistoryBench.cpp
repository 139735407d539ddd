#include "base/Background.h"
#include "base/Clock.h"
#include "base/Folders.h"
#include "history/HistoryFile.h"
#include "history/HistoryStore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

constexpr int recordCount = 2000;

class BenchClock final : public Clock
{
public:
    QDateTime now() const override { return QDateTime(QDate(2026, 3, 1), QTime(9, 0), QTimeZone::utc()); }
    QTimeZone timeZone() const override { return QTimeZone::systemTimeZone(); } // as the program's clock
    Duration monotonic() const override { return {}; }
    std::unique_ptr<Timer> after(Duration, std::function<void()>) override { return nullptr; }
    std::unique_ptr<Timer> every(Duration, std::function<void()>) override { return nullptr; }
};

class BenchFolders final : public Folders
{
public:
    QString temporary() const override { return m_directory.path(); }
    QString applicationSupport() const override { return m_directory.path(); }

private:
    QTemporaryDir m_directory;
};

class HereAndNow final : public Background
{
public:
    void run(QObject &, std::function<void()> work, std::function<void()> then) override
    {
        work();
        if (then)
            then();
    }
    void finish() override {}
};

QList<Dictation> records(int secondsApart = 3600)
{
    const QString sentence =
        QStringLiteral("The shop opens next week, and we should tell everybody before Friday. ");
    QList<Dictation> all;
    for (int i = 0; i < recordCount; ++i) {
        const QString text = sentence.repeated(1 + i % 5).trimmed();
        all.append({.id = QUuid::createUuid(),
                    .date = BenchClock().now().addSecs(qint64{-1} * secondsApart * i),
                    .durationSeconds = 4.25 + i % 30,
                    .wordCount = Dictation::wordCountOf(text),
                    .text = text,
                    .rawText = QStringLiteral("um ") + text,
                    .transcribeMs = 640 + i % 100,
                    .cleanupMs = 410,
                    .audioBytes = 136044,
                    .providerRaw = QStringLiteral("groq"),
                    .transcriptionModel = QStringLiteral("whisper-large-v3-turbo"),
                    .chatModel = QStringLiteral("openai/gpt-oss-120b")});
    }
    return all;
}

void fill(const BenchFolders &folders, int secondsApart = 3600)
{
    QDir().mkpath(folders.applicationSupport() + QStringLiteral("/Sayvane"));
    QFile file(folders.applicationSupport() + QStringLiteral("/Sayvane/history.json"));
    if (file.open(QIODevice::WriteOnly))
        file.write(HistoryFile::encode(records(secondsApart)));
}

void historyLoad(benchmark::State &state)
{
    BenchFolders folders;
    BenchClock clock;
    HereAndNow background;
    fill(folders);
    for (auto _ : state) {
        HistoryStore store(folders, clock, background);
        if (store.records().size() != recordCount)
            state.SkipWithError("not loaded");
    }
}

void historyAppendAndSave(benchmark::State &state)
{
    BenchFolders folders;
    BenchClock clock;
    HereAndNow background;
    fill(folders);
    HistoryStore store(folders, clock, background);
    const Dictation dictation = records().first();
    for (auto _ : state)
        store.append(dictation);
}

void historyEncode(benchmark::State &state)
{
    const QList<Dictation> all = records();
    for (auto _ : state)
        benchmark::DoNotOptimize(HistoryFile::encode(all));
}

/// One call over a full history, of a dictation an hour or of one a day for five years.
template <auto Operation>
void statistics(benchmark::State &state)
{
    qputenv("TZ", "Europe/London");
    BenchFolders folders;
    BenchClock clock;
    HereAndNow background;
    fill(folders, static_cast<int>(state.range(0)) * 3600);
    const HistoryStore store(folders, clock, background);
    for (auto _ : state)
        benchmark::DoNotOptimize(Operation(store));
}

constexpr auto allFigures = [](const HistoryStore &store) { return store.computeStats(); };
constexpr auto wordsOfTwoWeeks = [](const HistoryStore &store) { return store.wordsPerDay(14); };
constexpr auto usage = [](const HistoryStore &store) {
    const QDateTime month(QDate(2026, 3, 1), QTime(0, 0), QTimeZone::systemTimeZone());
    return store.usage(Provider::groq, month);
};

} // namespace

BENCHMARK(statistics<allFigures>)->Arg(1)->Arg(24)->Unit(benchmark::kMicrosecond);
BENCHMARK(statistics<wordsOfTwoWeeks>)->Arg(1)->Arg(24)->Unit(benchmark::kMicrosecond);
BENCHMARK(statistics<usage>)->Arg(1)->Arg(24)->Unit(benchmark::kMicrosecond);
BENCHMARK(historyLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(historyAppendAndSave)->Unit(benchmark::kMillisecond);
BENCHMARK(historyEncode)->Unit(benchmark::kMillisecond);
