#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

/// One completed dictation.
struct Dictation
{
    QUuid id;
    QDateTime date;                 ///< when it was made, UTC
    double durationSeconds = 0;     ///< length of the recording
    qint64 wordCount = 0;           ///< words in `text`
    QString text;                   ///< what was pasted
    std::optional<QString> rawText; ///< the transcript before cleanup, where it differs
    std::optional<qint64> transcribeMs;
    std::optional<qint64> cleanupMs;
    std::optional<qint64> audioBytes;
    std::optional<QString> providerRaw; ///< raw value of the provider that served it
    std::optional<QString> transcriptionModel;
    std::optional<QString> chatModel;

    bool operator==(const Dictation &) const = default;

    /// The number of pieces when the text is split at white space and line breaks, empty pieces dropped.
    static qint64 wordCountOf(const QString &text);

    /// Such as "1.2 s transcribe, 0.6 s cleanup"; none when the transcription was not timed.
    std::optional<QString> timingSummary() const;

    Q_DECLARE_TR_FUNCTIONS(Dictation)
};
