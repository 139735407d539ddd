#include "cloud/labs/LabsProviders.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

QList<LabsProvider> LabsProviders::offered() const
{
    QList<LabsProvider> providers;
    if (claude)
        providers.append(LabsProvider::claude);
    if (chatgpt)
        providers.append(LabsProvider::chatgpt);
    return providers;
}

std::optional<LabsProviders> LabsProviders::decode(const QByteArray &json)
{
    const QJsonObject answer = QJsonDocument::fromJson(json).object();
    const QJsonValue claude = answer.value("claude"_L1);
    const QJsonValue chatgpt = answer.value("chatgpt"_L1);
    if (!claude.isBool() || !chatgpt.isBool())
        return std::nullopt;
    return LabsProviders{claude.toBool(), chatgpt.toBool()};
}
