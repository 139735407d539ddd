#include "base/Provider.h"

using namespace Qt::StringLiterals;

const ProviderFacts &Providers::facts(Provider provider)
{
    static const ProviderFacts all[] = {
        {.rawValue = u"sayvane"_s,
         .displayName = u"Sayvane"_s,
         .keychainAccount = {},
         .keyPrefix = {},
         .console = u"https://sayvane.app/account"_s,
         .baseAddress = {},
         .transcription = {},
         .chat = {}},
        {.rawValue = u"groq"_s,
         .displayName = u"Groq"_s,
         .keychainAccount = u"groq_api_key"_s,
         .keyPrefix = u"gsk_"_s,
         .console = u"https://console.groq.com/keys"_s,
         .baseAddress = u"https://api.groq.com/openai/v1"_s,
         .transcription = {u"whisper-large-v3-turbo"_s, u"whisper-large-v3"_s, u"whisper"_s,
                           u"distil-whisper"_s},
         .chat = {u"openai/gpt-oss-120b"_s, u"openai/gpt-oss-20b"_s, u"qwen/qwen3.6-27b"_s,
                  u"llama-3.1-8b-instant"_s, u"llama-3.3-70b-versatile"_s, u"llama"_s, u"qwen"_s, u"gemma"_s,
                  u"mixtral"_s}},
        {.rawValue = u"openai"_s,
         .displayName = u"OpenAI"_s,
         .keychainAccount = u"openai_api_key"_s,
         .keyPrefix = u"sk-"_s,
         .console = u"https://platform.openai.com/api-keys"_s,
         .baseAddress = u"https://api.openai.com/v1"_s,
         .transcription = {u"gpt-4o-mini-transcribe"_s, u"gpt-4o-transcribe"_s, u"whisper-1"_s},
         .chat = {u"gpt-4o-mini"_s, u"gpt-4.1-nano"_s, u"gpt-4.1-mini"_s, u"gpt-5-nano"_s, u"gpt-5-mini"_s,
                  u"gpt-4o"_s}}};
    return all[static_cast<size_t>(provider)];
}

std::optional<Provider> Providers::fromRawValue(const QString &rawValue)
{
    for (const Provider provider : allCases) {
        if (Providers::rawValue(provider) == rawValue)
            return provider;
    }
    return std::nullopt;
}

std::optional<Provider> Providers::wrongCredential(const QString &key, Provider provider)
{
    if (key.startsWith(facts(provider).keyPrefix))
        return std::nullopt;
    for (const Provider other : apiKeyProviders) {
        if (key.startsWith(facts(other).keyPrefix))
            return other;
    }
    return std::nullopt;
}
