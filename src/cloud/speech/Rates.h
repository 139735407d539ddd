#pragma once

#include "base/Provider.h"

#include <QString>

#include <optional>
#include <span>

/// What dictations with a key of the user's own cost, in US dollars by the providers' published prices.
///
/// Estimates only: nothing is billed by them. The hosted service has no prices here.
namespace Rates {

/// US dollars per million tokens.
struct ChatRate
{
    double input = 0;
    double output = 0;

    bool operator==(const ChatRate &) const = default;
};

template <typename Value>
struct Entry
{
    QLatin1StringView model;
    Value value;
};

/// US dollars per hour of audio, by model.
inline constexpr Entry<double> transcriptionPerHour[]{{QLatin1StringView("whisper-large-v3-turbo"), 0.04},
                                                      {QLatin1StringView("whisper-large-v3"), 0.111},
                                                      {QLatin1StringView("gpt-4o-mini-transcribe"), 0.18},
                                                      {QLatin1StringView("gpt-4o-transcribe"), 0.36},
                                                      {QLatin1StringView("whisper-1"), 0.36}};

/// US dollars per million tokens, by model.
inline constexpr Entry<ChatRate> chatPerMillion[]{{QLatin1StringView("openai/gpt-oss-120b"), {0.15, 0.60}},
                                                  {QLatin1StringView("openai/gpt-oss-20b"), {0.075, 0.30}},
                                                  {QLatin1StringView("gpt-4o-mini"), {0.15, 0.60}}};

/// The price of a model id in any letter case: of the model with just that name, else of the longest name
/// that the id contains.
std::optional<double> rate(const QString &model, std::span<const Entry<double>> table);
std::optional<ChatRate> rate(const QString &model, std::span<const Entry<ChatRate>> table);

/// What the transcription of so much audio costs; a model without a price counts as the provider's default.
double transcriptionUSD(double seconds, const QString &model, Provider provider);

/// What the cleanup costs that came to so many words, by an estimate of the tokens; a model without a price
/// counts as the provider's default.
double chatUSD(qint64 wordCount, const QString &model, Provider provider);

} // namespace Rates
