#include "cli/RecordingText.h"

#include "cli/CommandContext.h"
#include "cli/ExitCode.h"
#include "cli/OfflineProgram.h"
#include "cli/Terminal.h"
#include "program/FileTranscript.h"

#include <QCoroTask>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Longer than any request: a transcription and a cleanup with all their retries.
constexpr auto answerLimit = 20min;

} // namespace

int RecordingText::print(const QString &path, const CommandContext &context)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    FileTranscript made;
    const ControlClient::Answer answer = context.running.call(u"Transcribe"_s, {absolute}, answerLimit);
    if (answer) {
        made.text = answer->value(0).toString();
        made.notice = answer->value(1).toString();
    } else if (answer.error().kind == ControlClient::Error::Kind::failed) {
        made.error = answer.error().message;
    } else {
        const auto program = OfflineProgram::take(context);
        if (!program)
            return Terminal::complain(program.error(), ExitCode::inUse);
        Host &host = (*program)->host();
        made = QCoro::waitFor(FileTranscript::of(absolute, host.transcriber(), host.prefs(), {}));
    }
    if (!made.error.isEmpty())
        return Terminal::complain(made.error, ExitCode::failed);
    if (!made.notice.isEmpty())
        Terminal::complain(made.notice, ExitCode::done);
    return Terminal::print(made.text + u'\n') ? ExitCode::done : ExitCode::failed;
}
