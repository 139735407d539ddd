#include "speech/ConnectionResult.h"

#include "speech/ModelResolver.h"

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
            notes.append(u"No "_s + name.toLower() + u" model here matches "_s + current + u'.');
        else if (*model != current)
            notes.append(name + u" model updated to "_s + *model + u'.');
        return model == current ? std::nullopt : model;
    };
    ConnectionResult result;
    result.status = u"Connected to "_s + Providers::displayName(provider) + u": "_s +
                    QString::number(available.size()) + u" models available"_s;
    result.transcriptionModel =
        successor(ModelPurpose::transcription, u"Transcription"_s, transcriptionModel);
    result.chatModel = successor(ModelPurpose::chat, u"Cleanup"_s, chatModel);
    notes.append(u"In use: "_s + result.transcriptionModel.value_or(transcriptionModel) +
                 u" for transcription, "_s + result.chatModel.value_or(chatModel) + u" for cleanup."_s);
    result.detail = notes.join(u' ');
    return result;
}
