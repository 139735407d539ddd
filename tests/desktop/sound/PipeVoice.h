#pragma once

#include <QList>
#include <QString>

/// Someone who speaks numbered samples into a microphone that is a named pipe.
///
/// The microphone hears each sample exactly as it was said, as soon as it was said, and nothing else.
class PipeVoice final
{
public:
    explicit PipeVoice(const QString &pipe);
    ~PipeVoice();
    PipeVoice(const PipeVoice &) = delete;
    PipeVoice &operator=(const PipeVoice &) = delete;

    /// The server's module that makes the pipe a microphone of 16 kHz.
    static QString microphone(const QString &name, const QString &pipe);

    /// Says so many samples.
    void say(qsizetype count);

    /// What was said since the last `forget`.
    const QList<qint16> &said() const { return m_said; }

    void forget() { m_said.clear(); }

private:
    int m_pipe;
    qint16 m_next = 1;
    QList<qint16> m_said;
};
