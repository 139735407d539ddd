#include "base/Provider.h"

using namespace Qt::StringLiterals;

QString Providers::rawValue(Provider provider)
{
    switch (provider) {
    case Provider::sayvane:
        return u"sayvane"_s;
    case Provider::groq:
        return u"groq"_s;
    case Provider::openai:
        return u"openai"_s;
    }
    Q_UNREACHABLE();
}

std::optional<Provider> Providers::fromRawValue(const QString &rawValue)
{
    for (const Provider provider : allCases) {
        if (Providers::rawValue(provider) == rawValue)
            return provider;
    }
    return std::nullopt;
}

QString Providers::displayName(Provider provider)
{
    switch (provider) {
    case Provider::sayvane:
        return u"Sayvane"_s;
    case Provider::groq:
        return u"Groq"_s;
    case Provider::openai:
        return u"OpenAI"_s;
    }
    Q_UNREACHABLE();
}

QString Providers::keychainAccount(Provider provider)
{
    switch (provider) {
    case Provider::sayvane:
        return {};
    case Provider::groq:
        return u"groq_api_key"_s;
    case Provider::openai:
        return u"openai_api_key"_s;
    }
    Q_UNREACHABLE();
}
