#include "history/HistoryStore.h"

#include "base/Background.h"
#include "base/Clock.h"
#include "base/Folders.h"
#include "cloud/speech/Rates.h"
#include "history/LocalDays.h"

#include <QFile>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

FlowStats HistoryStore::computeStats() const
{
    return FlowStats::compute(m_records, m_clock.now(), m_clock.timeZone());
}

int HistoryStore::dayStreak(const QTimeZone &calendar) const
{
    return FlowStats::dayStreakOf(m_records, m_clock.now(), calendar);
}

QList<DayWords> HistoryStore::wordsPerDay(int days) const
{
    LocalDays calendar(m_clock.timeZone());
    const qint64 today = calendar.dayOf(m_clock.now());
    QList<qint64> words(std::max(days, 1)); // of today, yesterday, and so on
    for (const Dictation &record : m_records) {
        const qint64 daysAgo = today - calendar.dayOf(record.date);
        if (daysAgo >= 0 && daysAgo < words.size())
            words[daysAgo] += record.wordCount;
    }
    QList<DayWords> result;
    result.reserve(words.size());
    for (qint64 daysAgo = words.size() - 1; daysAgo >= 0; --daysAgo) {
        if (const QDateTime date = calendar.startOf(today - daysAgo); date.isValid())
            result.append({date, words.at(daysAgo)});
    }
    return result;
}

HistoryStore::Usage HistoryStore::usage(Provider currentProvider, const QDateTime &since) const
{
    const auto add = [](UsageSummary &summary, double seconds, double cost) {
        ++summary.dictations;
        summary.seconds += seconds;
        summary.costUSD += cost;
    };
    Usage usage;
    const QDateTime begin = since.toUTC(); // as the records are, which compares faster
    for (const Dictation &record : m_records) {
        const double seconds = std::max(record.durationSeconds, 0.0);
        const double cost = estimatedCost(record, currentProvider);
        add(usage.allTime, seconds, cost);
        if (record.date >= begin)
            add(usage.period, seconds, cost);
    }
    return usage;
}

double HistoryStore::estimatedCost(const Dictation &dictation, Provider currentProvider)
{
    const Provider provider =
        Providers::fromRawValue(dictation.providerRaw.value_or(QString())).value_or(currentProvider);
    if (provider == Provider::sayvane)
        return 0;
    const auto used = [provider](const std::optional<QString> &model, ModelPurpose purpose) {
        return model.value_or(Providers::defaultModel(provider, purpose));
    };
    const double transcription = Rates::transcriptionUSD(
        dictation.durationSeconds, used(dictation.transcriptionModel, ModelPurpose::transcription), provider);
    if (!dictation.chatModel && !dictation.rawText)
        return transcription;
    return transcription +
           Rates::chatUSD(dictation.wordCount, used(dictation.chatModel, ModelPurpose::chat), provider);
}

HistoryStore::HistoryStore(Folders &folders, Clock &clock, Background &background)
    : m_clock(clock),
      m_background(background),
      m_disk(folders.history(), clock)
{
    m_background.run(
        *this, [this] { m_loaded = m_disk.load(); }, [this] { adopt(); });
}

HistoryStore::~HistoryStore()
{
    m_background.finish();
    if (m_early.isEmpty())
        return;
    blockSignals(true);
    adopt();
    m_background.finish();
}

void HistoryStore::adopt()
{
    m_records = std::move(m_loaded);
    m_isAdopted = true;
    publish();
    for (const std::function<void()> &change : std::exchange(m_early, {}))
        change();
}

void HistoryStore::change(std::function<void()> change)
{
    if (m_isAdopted)
        change();
    else
        m_early.append(std::move(change));
}

void HistoryStore::save(const QString &recording, const std::function<void()> &settled)
{
    const auto write = [this, records = m_records, recording] {
        if (m_disk.save(records) && !recording.isEmpty())
            QFile::remove(recording);
    };
    m_background.run(*this, write, settled);
}

void HistoryStore::append(const Dictation &dictation, const QString &recording,
                          const std::function<void()> &settled)
{
    change([this, dictation, recording, settled] {
        m_records.prepend(dictation);
        if (m_records.size() > cap)
            m_records.resize(cap);
        save(recording, settled);
        publish();
    });
}

void HistoryStore::remove(const Dictation &dictation)
{
    change([this, id = dictation.id] {
        m_records.removeIf([&](const Dictation &record) { return record.id == id; });
        save();
        publish();
    });
}

void HistoryStore::clear()
{
    change([this] {
        m_records.clear();
        save();
        publish();
    });
}

void HistoryStore::publish()
{
    m_stats = computeStats();
    Q_EMIT recordsChanged();
}
