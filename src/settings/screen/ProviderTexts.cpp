#include "settings/screen/ProviderTexts.h"

using namespace Qt::StringLiterals;

QString ProviderTexts::advancedLabel(Provider provider)
{
    return provider == Provider::sayvane ? u"Advanced: use your own API key instead"_s
                                         : u"Advanced: bring your own API key"_s;
}

QString ProviderTexts::transcriptionCaption(Provider provider)
{
    switch (provider) {
    case Provider::sayvane:
        return {};
    case Provider::groq:
        return u"whisper-large-v3-turbo: fastest and cheapest. whisper-large-v3: slightly more accurate."_s;
    case Provider::openai:
        return u"gpt-4o-mini-transcribe: cheapest and fast. gpt-4o-transcribe: most accurate. whisper-1: "
               "classic."_s;
    }
    Q_UNREACHABLE();
}

QString ProviderTexts::cleanupCaption(Provider provider)
{
    switch (provider) {
    case Provider::sayvane:
        return {};
    case Provider::groq:
        return u"openai/gpt-oss-120b: the default, best at telling an instruction from content. "
               "openai/gpt-oss-20b: cheaper and a little faster. Test connection picks a valid one."_s;
    case Provider::openai:
        return u"gpt-4o-mini: cheap and fast. gpt-4.1-mini: stronger. Test connection picks a valid one."_s;
    }
    Q_UNREACHABLE();
}
