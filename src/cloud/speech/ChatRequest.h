#pragma once

#include "base/FlowError.h"
#include "base/Provider.h"

#include <QByteArray>
#include <QString>

#include <expected>

/// What the chat model is told before it edits a transcript.
namespace CleanupPrompt {

/// The fixed part, UTF-8, without a line feed at the end.
extern const char *const fixedText;

/// The fixed part, followed by the trimmed custom vocabulary unless that is empty.
QString with(const QString &vocabulary);

} // namespace CleanupPrompt

/// The chat completion that edits a transcript (the OpenAI-compatible "chat/completions" form).
namespace ChatRequest {

enum class Form {
    full,    ///< with sampling and length parameters
    minimal, ///< model and messages alone, for models that reject those parameters
};

QByteArray body(Form form, Provider provider, const QString &model, const QString &prompt,
                const QString &transcript);

/// Whether the id, with or without an owner before a slash, is of the family that takes
/// "max_completion_tokens" and no temperature.
bool isGPT5(const QString &model);

/// The first choice's text, or `transcript` when there is no choice; an error when the answer has
/// another form.
std::expected<QString, FlowError> answer(const QByteArray &json, const QString &transcript);

/// The text without the model's reasoning: every "<think>" block, and all that follows an unclosed one.
QString withoutReasoning(const QString &answer);

} // namespace ChatRequest
