#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <optional>

/// What a model is chosen for: speech to text, or editing the transcript.
enum class ModelPurpose { transcription, chat };

/// Who turns speech into text: the hosted service, or a service that the user has a key for.
enum class Provider { sayvane, groq, openai };

/// What is known of a provider.
struct ProviderFacts
{
    QString rawValue; ///< the text that preferences and history store
    QString displayName;
    QString keychainAccount; ///< of its API key; empty where the session is the credential
    QString keyPrefix;       ///< what every key of it begins with
    QString console;         ///< the page where the user looks after the account or the keys
    QString baseAddress;     ///< of its API; empty where the preferences have it
    /// The models for each purpose from the best on: names, or parts of names. The first is the default; none
    /// where the service chooses.
    QStringList transcription, chat;

    const QStringList &models(ModelPurpose purpose) const
    {
        return purpose == ModelPurpose::chat ? chat : transcription;
    }
};

namespace Providers {

inline constexpr std::array allCases{Provider::sayvane, Provider::groq, Provider::openai};
/// Those that use a key of the user's own.
inline constexpr std::array apiKeyProviders{Provider::groq, Provider::openai};

const ProviderFacts &facts(Provider provider);

inline QString rawValue(Provider provider)
{
    return facts(provider).rawValue;
}
/// The provider stored as exactly this text; none for any other.
std::optional<Provider> fromRawValue(const QString &rawValue);
inline QString displayName(Provider provider)
{
    return facts(provider).displayName;
}
inline QString keychainAccount(Provider provider)
{
    return facts(provider).keychainAccount;
}
/// Empty where the service chooses its models.
inline QString defaultModel(Provider provider, ModelPurpose purpose)
{
    return facts(provider).models(purpose).value(0);
}
/// The other provider that a key belongs to by its beginning; none for one that may be the provider's own.
std::optional<Provider> wrongCredential(const QString &key, Provider provider);

} // namespace Providers
