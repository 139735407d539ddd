#include "cli/Commands.h"

#include "base/Clock.h"
#include "base/Platform.h"
#include "cli/OfflineProgram.h"
#include "cli/SpokenFile.h"
#include "cli/Terminal.h"
#include "history/LeftRecordings.h"
#include "preferences/Prefs.h"
#include "program/FileTranscript.h"
#include "program/ProfileLock.h"

#include <QCoroTask>
#include <QDBusArgument>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Longer than any request: a transcription and a cleanup with all their retries.
constexpr auto answerLimit = 20min;

constexpr qsizetype shortId = 8;

int list(const LeftRecordings &recordings, const QTimeZone &zone)
{
    QString text;
    for (const LeftRecording &recording : recordings.all())
        text += u"%1  %2  %3 s\n"_s.arg(recording.id.first(std::min(shortId, recording.id.size())),
                                        recording.date.toTimeZone(zone).toString(u"yyyy-MM-dd HH:mm"_s),
                                        QString::number(recording.seconds, 'f', 1));
    return Terminal::print(text) ? ExitCode::done : ExitCode::failed;
}

int removeAll(const QList<LeftRecording> &recordings)
{
    for (const LeftRecording &recording : recordings) {
        if (!LeftRecordings::remove(recording))
            return Terminal::complain(u"%1 could not be deleted."_s.arg(recording.path), ExitCode::failed);
    }
    return ExitCode::done;
}

/// Tells, or chooses, whether a recording whose transcription failed is kept.
int keepFailed(const CommandContext &context)
{
    const QString wanted = context.asked.arguments.value(1);
    if (!QStringList{QString(), u"on"_s, u"off"_s}.contains(wanted) || context.asked.all)
        return Terminal::complain(u"'recover failed' takes on or off."_s, ExitCode::usage);
    bool isOn = wanted == "on"_L1;
    const ControlClient::Answer answer = wanted.isEmpty()
                                             ? context.running.call(u"Status"_s)
                                             : context.running.call(u"KeepFailedRecordings"_s, {isOn});
    if (!answer && answer.error().kind == ControlClient::Error::Kind::failed)
        return Terminal::complain(answer.error().message, ExitCode::failed);
    if (!answer) {
        const auto program = OfflineProgram::take(context);
        if (!program)
            return Terminal::complain(program.error(), ExitCode::inUse);
        Prefs &prefs = (*program)->host().prefs();
        if (wanted.isEmpty())
            isOn = prefs.keepFailedRecordings();
        else
            prefs.keepFailedRecordings.set(isOn);
    } else if (wanted.isEmpty()) {
        isOn = qdbus_cast<QVariantMap>(answer->value(0)).value(u"keepsFailedRecordings"_s).toBool();
    }
    return Terminal::print(isOn ? u"on\n"_s : u"off\n"_s) ? ExitCode::done : ExitCode::failed;
}

/// Has the running program transcribe the file, or does so here where none runs.
int printText(const QString &path, const CommandContext &context)
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

} // namespace

int Commands::transcribe(const CommandContext &context)
{
    const auto spoken = SpokenFile::of(context.asked.arguments.first());
    if (!spoken)
        return Terminal::complain(spoken.error().sentence, spoken.error().status);
    return printText(spoken->path(), context);
}

int Commands::recover(const CommandContext &context)
{
    if (context.asked.arguments.value(0) == "failed"_L1)
        return keepFailed(context);
    const Platform &machine = context.machine();
    LeftRecordings recordings(machine.folders, machine.clock);
    {
        // Where the program has not started again since, what it left is still where it was made.
        ProfileLock lock(machine.folders);
        if (lock.tryLock(0s))
            recordings.takeIn();
    }
    const QString action = context.asked.arguments.value(0, u"list"_s);
    const QString id = context.asked.arguments.value(1);
    if (action == "list"_L1 && id.isEmpty() && !context.asked.all)
        return list(recordings, machine.clock.timeZone());
    if (action == "delete"_L1 && context.asked.all && id.isEmpty())
        return removeAll(recordings.all());
    if ((action != "delete"_L1 && action != "transcribe"_L1) || id.isEmpty() || context.asked.all)
        return Terminal::complain(
            u"'recover' takes list, transcribe ID, delete ID, delete --all or failed. Try --help."_s,
            ExitCode::usage);
    const auto found = recordings.find(id);
    if (!found)
        return Terminal::complain(found.error(), ExitCode::noInput);
    return action == "delete"_L1 ? removeAll({*found}) : printText(found->path, context);
}
