#include "cloud/speech/Rates.h"

using namespace Qt::StringLiterals;

namespace {

template <typename Value>
std::optional<Value> lookUp(const QString &model, std::span<const Rates::Entry<Value>> table)
{
    // Stored ids mostly stand in the table as they are, and a history has thousands.
    for (const auto &entry : table) {
        if (model == entry.model)
            return entry.value;
    }
    const QString normalized = model.trimmed().toLower();
    const Rates::Entry<Value> *longest = nullptr;
    for (const auto &entry : table) {
        if (normalized == entry.model)
            return entry.value;
        if (normalized.contains(entry.model) && (!longest || entry.model.size() > longest->model.size()))
            longest = &entry;
    }
    return longest ? std::optional(longest->value) : std::nullopt;
}

} // namespace

std::optional<double> Rates::rate(const QString &model, std::span<const Entry<double>> table)
{
    return lookUp(model, table);
}

std::optional<Rates::ChatRate> Rates::rate(const QString &model, std::span<const Entry<ChatRate>> table)
{
    return lookUp(model, table);
}

double Rates::transcriptionUSD(double seconds, const QString &model, Provider provider)
{
    auto perHour = rate(model, transcriptionPerHour);
    if (!perHour)
        perHour = rate(Providers::defaultModel(provider, ModelPurpose::transcription), transcriptionPerHour);
    return (seconds > 0 ? seconds : 0) / 3600 * perHour.value_or(0);
}

double Rates::chatUSD(qint64 wordCount, const QString &model, Provider provider)
{
    auto perMillion = rate(model, chatPerMillion);
    if (!perMillion)
        perMillion = rate(Providers::defaultModel(provider, ModelPurpose::chat), chatPerMillion);
    if (!perMillion)
        return 0;
    const auto words = static_cast<double>(wordCount);
    const double inputTokens = words * 1.5 + 250; // the system prompt and the transcript
    const double outputTokens = words * 1.4;
    return (inputTokens * perMillion->input + outputTokens * perMillion->output) / 1'000'000;
}
