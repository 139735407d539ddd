#include "screens/settings/OwnKey.h"

using namespace Qt::StringLiterals;

QString OwnKey::prefix(Provider provider)
{
    switch (provider) {
    case Provider::sayvane:
        return {};
    case Provider::groq:
        return u"gsk_"_s;
    case Provider::openai:
        return u"sk-"_s;
    }
    Q_UNREACHABLE();
}

QString OwnKey::consoleAddress(Provider provider)
{
    switch (provider) {
    case Provider::sayvane:
        return u"https://sayvane.app/account"_s;
    case Provider::groq:
        return u"https://console.groq.com/keys"_s;
    case Provider::openai:
        return u"https://platform.openai.com/api-keys"_s;
    }
    Q_UNREACHABLE();
}

std::optional<Provider> OwnKey::wrongCredential(const QString &key, Provider provider)
{
    if (key.startsWith(prefix(provider)))
        return std::nullopt;
    for (const Provider other : Providers::apiKeyProviders) {
        if (key.startsWith(prefix(other)))
            return other;
    }
    return std::nullopt;
}
