#pragma once

#include <QString>

/// What the chat model is told before it edits a transcript.
namespace CleanupPrompt {

/// The fixed part, UTF-8, without a line feed at the end.
extern const char *const fixedText;

/// The fixed part, followed by the trimmed custom vocabulary unless that is empty.
QString with(const QString &vocabulary);

} // namespace CleanupPrompt
