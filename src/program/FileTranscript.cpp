#include "program/FileTranscript.h"

#include "cloud/speech/Transcriber.h"
#include "preferences/Prefs.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

/// Why nobody need be asked what the file says; empty where it looks like a recording.
QString objection(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString() + u'.';
    const QByteArray start = file.read(12);
    if (!start.startsWith("RIFF") || !start.endsWith("WAVE"))
        return u"This is not a WAV file."_s;
    return {};
}

} // namespace

QCoro::Task<FileTranscript> FileTranscript::of(QString path, Transcriber &transcriber, const Prefs &prefs,
                                               std::stop_token stop)
{
    FileTranscript result;
    result.error = objection(path);
    if (!result.error.isEmpty())
        co_return result;
    const Transcriber::Text raw = co_await transcriber.transcribe(path, stop);
    if (stop.stop_requested())
        co_return result;
    result.text = raw ? raw->trimmed() : QString();
    if (!raw)
        result.error = raw.error().description;
    else if (result.text.isEmpty())
        result.error = FlowError::nothingHeard().description;
    if (!result.error.isEmpty() || !prefs.cleanupEnabled())
        co_return result;
    const QString heard = result.text;
    const Transcriber::Text cleaned = co_await transcriber.cleanup(heard, stop);
    if (stop.stop_requested())
        co_return result;
    if (!cleaned)
        result.notice = u"Raw transcript. Cleanup failed: "_s + cleaned.error().description;
    else if (!cleaned->trimmed().isEmpty())
        result.text = cleaned->trimmed();
    co_return result;
}
