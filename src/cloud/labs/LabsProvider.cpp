#include "cloud/labs/LabsProvider.h"

using namespace Qt::StringLiterals;

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
