#include "screens/settings/ProviderTexts.h"

using namespace Qt::StringLiterals;

QString ProviderTexts::advancedLabel(Provider provider)
{
    return provider == Provider::sayvane ? tr("Advanced: use your own API key instead")
                                         : tr("Advanced: bring your own API key");
}

QString ProviderTexts::transcriptionCaption(Provider provider)
{
    switch (provider) {
    case Provider::sayvane:
        return {};
    case Provider::groq:
        return tr("whisper-large-v3-turbo: fastest and cheapest. whisper-large-v3: slightly more accurate.");
    case Provider::openai:
        return tr("gpt-4o-mini-transcribe: cheapest and fast. gpt-4o-transcribe: most accurate. whisper-1: "
                  "classic.");
    }
    Q_UNREACHABLE();
}

QString ProviderTexts::cleanupCaption(Provider provider)
{
    switch (provider) {
    case Provider::sayvane:
        return {};
    case Provider::groq:
        return tr("openai/gpt-oss-120b: the default, best at telling an instruction from content. "
                  "openai/gpt-oss-20b: cheaper and a little faster. Test connection picks a valid one.");
    case Provider::openai:
        return tr("gpt-4o-mini: cheap and fast. gpt-4.1-mini: stronger. Test connection picks a valid one.");
    }
    Q_UNREACHABLE();
}
