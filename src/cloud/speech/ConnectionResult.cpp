#include "cloud/speech/ConnectionResult.h"

#include "base/Text.h"
#include "cloud/speech/ModelResolver.h"

using namespace Qt::StringLiterals;

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
