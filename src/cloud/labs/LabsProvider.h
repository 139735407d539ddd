#pragma once

#include <QByteArray>
#include <QList>
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

/// Which assistants the service offers now.
struct LabsProviders
{
    bool claude = false;
    bool chatgpt = false;

    bool operator==(const LabsProviders &) const = default;

    /// Those offered, in the order of lists.
    QList<LabsProvider> offered() const;

    /// None unless the answer speaks of both.
    static std::optional<LabsProviders> decode(const QByteArray &json);
};
