#pragma once

#include <QCoroTask>
#include <QString>

#include <stop_token>

class Prefs;
class Transcriber;

/// What the configured provider made of a WAV file.
struct FileTranscript
{
    QString text;
    QString notice; ///< what went less well than it should; empty when all did
    QString error;  ///< why there is no text; empty when there is

    /// Transcribes as a dictation does, cleanup included where it is on. The file is only read.
    static QCoro::Task<FileTranscript> of(QString path, Transcriber &transcriber, const Prefs &prefs,
                                          std::stop_token stop);
};
