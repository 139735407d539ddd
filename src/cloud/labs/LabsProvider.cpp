#include "cloud/labs/LabsProvider.h"

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

QString LabsProviderNames::rawValue(LabsProvider provider)
{
    return provider == LabsProvider::claude ? u"claude"_s : u"chatgpt"_s;
}

std::optional<LabsProvider> LabsProviderNames::fromRawValue(const QString &rawValue)
{
    for (const LabsProvider provider : allCases) {
        if (LabsProviderNames::rawValue(provider) == rawValue)
            return provider;
    }
    return std::nullopt;
}

QString LabsProviderNames::title(LabsProvider provider)
{
    return provider == LabsProvider::claude ? u"Claude"_s : u"ChatGPT"_s;
}
