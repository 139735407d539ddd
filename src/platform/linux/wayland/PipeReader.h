#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

/// Reads a pipe to its end, or until a bound on time or size is passed; then there is nothing.
class PipeReader final : public QObject
{
    Q_OBJECT
public:
    /// Takes the descriptor over.
    explicit PipeReader(int descriptor);
    ~PipeReader() override;
    Q_DISABLE_COPY_MOVE(PipeReader)

    const QByteArray &bytes() const { return m_bytes; }

Q_SIGNALS:
    void finished();

private:
    void read();
    void give(const QByteArray &bytes);

    int m_descriptor;
    QSocketNotifier m_notifier;
    QByteArray m_bytes;
};
