#pragma once

#include <QString>

#include <array>
#include <optional>

/// What an assistant is asked to do: answer a question, draft a reply, or rewrite a text.
enum class LabsMode { answer, reply, rewrite };

namespace LabsModes {

/// In the order of lists.
inline constexpr std::array allCases{LabsMode::answer, LabsMode::reply, LabsMode::rewrite};

/// The text that the service knows it by.
QString rawValue(LabsMode mode);
/// The mode of exactly this text; none for any other.
std::optional<LabsMode> fromRawValue(const QString &rawValue);
QString title(LabsMode mode);

} // namespace LabsModes
