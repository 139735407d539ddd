#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

/// Writes to a pipe as fast as its reader takes it, and deletes itself at the end, or when the reader went
/// away or takes nothing for too long.
class PipeWriter final : public QObject
{
    Q_OBJECT
public:
    /// Takes the descriptor over.
    PipeWriter(int descriptor, QByteArray bytes, QObject *parent);
    ~PipeWriter() override;
    Q_DISABLE_COPY_MOVE(PipeWriter)

private:
    void write();

    int m_descriptor;
    QSocketNotifier m_notifier;
    QByteArray m_bytes;
    qsizetype m_written = 0;
};
