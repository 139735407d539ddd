#pragma once

#include <QCoreApplication>
#include <QString>

#include <array>
#include <optional>

/// What an assistant is asked to do: answer a question, draft a reply, or rewrite a text.
enum class LabsMode { answer, reply, rewrite };

struct LabsModes
{
    /// In the order of lists.
    static constexpr std::array allCases{LabsMode::answer, LabsMode::reply, LabsMode::rewrite};

    /// The text that the service knows it by.
    static QString rawValue(LabsMode mode);
    /// The mode of exactly this text; none for any other.
    static std::optional<LabsMode> fromRawValue(const QString &rawValue);
    static QString title(LabsMode mode);

    Q_DECLARE_TR_FUNCTIONS(LabsModes)
};
