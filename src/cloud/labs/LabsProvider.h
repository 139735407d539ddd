#pragma once

#include <QString>

#include <array>
#include <optional>

/// An outside assistant that the hosted service passes a prompt to.
enum class LabsProvider { claude, chatgpt };

namespace LabsProviderNames {

/// In the order of lists.
inline constexpr std::array allCases{LabsProvider::claude, LabsProvider::chatgpt};

/// The text that the preferences and the service know it by.
QString rawValue(LabsProvider provider);
/// The provider of exactly this text; none for any other.
std::optional<LabsProvider> fromRawValue(const QString &rawValue);
QString title(LabsProvider provider);

} // namespace LabsProviderNames
