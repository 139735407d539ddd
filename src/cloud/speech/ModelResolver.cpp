#include "cloud/speech/ModelResolver.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

/// What marks a model as unfit for editing text.
constexpr std::array nonChatMarkers{"whisper"_L1,      "tts"_L1,     "transcribe"_L1, "audio"_L1,
                                    "realtime"_L1,     "orpheus"_L1, "guard"_L1,      "safeguard"_L1,
                                    "prompt-guard"_L1, "embed"_L1,   "rerank"_L1,     "vision"_L1,
                                    "moderation"_L1,   "image"_L1,   "dall-e"_L1,     "compound"_L1};

bool isForChat(const QString &id)
{
    const QString lower = id.toLower();
    return std::ranges::none_of(nonChatMarkers,
                                [&](QLatin1StringView marker) { return lower.contains(marker); });
}

bool isAsciiDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

/// How large a model is, for comparing: one that does not say counts as larger than any that does.
double sizeOf(const QString &id)
{
    return ModelResolver::parameterCount(id).value_or(std::numeric_limits<double>::infinity());
}

bool isShorterOrEarlier(const QString &id, const QString &other)
{
    const int length = Text::characterCount(id);
    const int otherLength = Text::characterCount(other);
    return length != otherLength ? length < otherLength : id < other;
}

} // namespace

ConnectionResult ConnectionResult::applyResolvedModels(const QStringList &available, Provider provider,
                                                       const QString &transcriptionModel,
                                                       const QString &chatModel)
{
    QStringList notes;
    const auto successor = [&](ModelPurpose purpose, const QString &name,
                               const QString &current) -> std::optional<QString> {
        const auto model = ModelResolver::resolve(purpose, provider, available, current);
        if (!model)
            notes.append(tr("No %1 model here matches %2.").arg(name.toLower(), current));
        else if (*model != current)
            notes.append(tr("%1 model updated to %2.").arg(name, Text::quoted(*model)));
        return model == current ? std::nullopt : model;
    };
    ConnectionResult result;
    result.status = tr("Connected to %1: %2 models available")
                        .arg(Providers::displayName(provider), QString::number(available.size()));
    result.transcriptionModel =
        successor(ModelPurpose::transcription, tr("Transcription"), transcriptionModel);
    result.chatModel = successor(ModelPurpose::chat, tr("Cleanup"), chatModel);
    notes.append(tr("In use: %1 for transcription, %2 for cleanup.")
                     .arg(Text::quoted(result.transcriptionModel.value_or(transcriptionModel)),
                          Text::quoted(result.chatModel.value_or(chatModel))));
    result.detail = notes.join(u' ');
    return result;
}

std::optional<QString> ModelResolver::resolve(ModelPurpose purpose, Provider provider,
                                              const QStringList &available, const QString &current)
{
    QStringList ids;
    for (const QString &id : available) {
        if (const QString trimmed = id.trimmed(); !trimmed.isEmpty())
            ids.append(trimmed);
    }
    const QString wanted = current.trimmed();
    for (const QString &id : std::as_const(ids)) {
        if (!wanted.isEmpty() && id.compare(wanted, Qt::CaseInsensitive) == 0)
            return id;
    }
    const QStringList &ranked = preferences(purpose, provider);
    if (purpose == ModelPurpose::chat) {
        QStringList forChat;
        std::ranges::copy_if(ids, std::back_inserter(forChat), isForChat);
        if (const auto match = firstMatch(forChat, ranked))
            return match;
    }
    return firstMatch(ids, ranked);
}

std::optional<QString> ModelResolver::firstMatch(const QStringList &ids, const QStringList &preferences)
{
    QStringList lowerIds;
    std::ranges::transform(ids, std::back_inserter(lowerIds), [](const QString &id) { return id.toLower(); });
    for (const QString &preference : preferences) {
        const QString lower = preference.toLower();
        QStringList candidates;
        for (qsizetype i = 0; i < ids.size(); ++i) {
            if (lowerIds.at(i).contains(lower))
                candidates.append(ids.at(i));
        }
        if (const auto found = best(candidates, lower))
            return found;
    }
    return std::nullopt;
}

std::optional<QString> ModelResolver::best(const QStringList &candidates, const QString &exactly)
{
    if (candidates.isEmpty())
        return std::nullopt;
    for (const QString &candidate : candidates) {
        if (candidate.toLower() == exactly)
            return candidate;
    }
    QString chosen = candidates.first();
    double chosenSize = sizeOf(chosen);
    for (const QString &candidate : candidates.sliced(1)) {
        const double size = sizeOf(candidate);
        if (size < chosenSize || (size == chosenSize && isShorterOrEarlier(candidate, chosen))) {
            chosen = candidate;
            chosenSize = size;
        }
    }
    return chosen;
}

std::optional<double> ModelResolver::parameterCount(const QString &id)
{
    std::optional<double> smallest;
    const QString lower = id.toLower();
    const auto consider = [&smallest](QStringView word) {
        if (word.size() < 2 || !word.endsWith(u'b'))
            return;
        const QStringView number = word.chopped(1);
        if (std::ranges::all_of(number, isAsciiDigit))
            smallest =
                std::min(smallest.value_or(std::numeric_limits<double>::infinity()), number.toDouble());
    };
    qsizetype begin = 0;
    for (qsizetype i = 0; i <= lower.size(); ++i) {
        if (i < lower.size() && lower.at(i).isLetterOrNumber())
            continue;
        consider(QStringView(lower).sliced(begin, i - begin));
        begin = i + 1;
    }
    return smallest;
}
