#include "cloud/speech/ChatRequest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

using namespace Qt::StringLiterals;

QString CleanupPrompt::with(const QString &vocabulary)
{
    const QString prompt = QString::fromUtf8(fixedText);
    if (vocabulary.isEmpty())
        return prompt;
    return prompt + u"\n\nNames and terms that may have been misheard, with their correct spelling: "_s +
           vocabulary;
}

QByteArray ChatRequest::body(Form form, Provider provider, const QString &model, const QString &prompt,
                             const QString &transcript)
{
    QJsonObject object{
        {u"model"_s, model},
        {u"messages"_s, QJsonArray{QJsonObject{{u"role"_s, u"system"_s}, {u"content"_s, prompt}},
                                   QJsonObject{{u"role"_s, u"user"_s}, {u"content"_s, transcript}}}},
    };
    if (form == Form::full) {
        static constexpr int longestAnswer = 4096; // tokens
        if (isGPT5(model)) {
            object.insert(u"max_completion_tokens"_s, longestAnswer);
        } else {
            object.insert(u"temperature"_s, 0.2);
            object.insert(u"max_tokens"_s, longestAnswer);
        }
        if (provider == Provider::groq && model.toLower().contains("gpt-oss"_L1))
            object.insert(u"reasoning_effort"_s, u"low"_s);
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

bool ChatRequest::isGPT5(const QString &model)
{
    const QStringList pieces = model.trimmed().toLower().split(u'/', Qt::SkipEmptyParts);
    return !pieces.isEmpty() && pieces.last().startsWith("gpt-5"_L1);
}

std::expected<QString, FlowError> ChatRequest::answer(const QByteArray &json, const QString &transcript)
{
    const auto unreadable =
        std::unexpected(FlowError::platform(FlowError::tr("The answer could not be read.")));
    const QJsonValue choices = QJsonDocument::fromJson(json).object().value("choices"_L1);
    if (!choices.isArray())
        return unreadable;
    QString first = transcript;
    const QJsonArray list = choices.toArray();
    for (qsizetype i = list.size() - 1; i >= 0; --i) {
        const QJsonValue content = list.at(i).toObject().value("message"_L1).toObject().value("content"_L1);
        if (!content.isString())
            return unreadable;
        first = content.toString();
    }
    return first;
}

QString ChatRequest::withoutReasoning(const QString &answer)
{
    static constexpr auto opening = "<think>"_L1;
    static constexpr auto closing = "</think>"_L1;
    QString kept; // never with a whole opening in it, also not one that forms when a block goes
    for (qsizetype i = 0; i < answer.size();) {
        kept += answer.at(i++);
        if (!kept.endsWith(opening))
            continue;
        kept.chop(opening.size());
        const qsizetype end = answer.indexOf(closing, i);
        if (end < 0)
            return kept;
        i = end + closing.size();
    }
    return kept;
}
