#pragma once

#include <QString>

#include <array>
#include <optional>

/// What a model is chosen for: speech to text, or editing the transcript.
enum class ModelPurpose { transcription, chat };

/// Who turns speech into text: the hosted service, or a service that the user has a key for.
enum class Provider { sayvane, groq, openai };

namespace Providers {

inline constexpr std::array allCases{Provider::sayvane, Provider::groq, Provider::openai};
/// Those that use a key of the user's own.
inline constexpr std::array apiKeyProviders{Provider::groq, Provider::openai};

/// The text that preferences and history store.
QString rawValue(Provider provider);
/// The provider stored as exactly this text; none for any other.
std::optional<Provider> fromRawValue(const QString &rawValue);
QString displayName(Provider provider);
/// The account of its API key in the keychain; empty where the session is the credential.
QString keychainAccount(Provider provider);

} // namespace Providers
