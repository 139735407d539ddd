#pragma once

#include <QString>

struct CommandContext;

/// A recording, as text on standard output.
namespace RecordingText {

/// Has the running program transcribe the file, or does so here where none runs; gives the exit status.
int print(const QString &path, const CommandContext &context);

} // namespace RecordingText
