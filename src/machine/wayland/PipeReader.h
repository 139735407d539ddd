#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

#include <memory>

/// Reads a pipe to its end, unless there is more than may be; then there is nothing.
class PipeReader final : public QObject
{
    Q_OBJECT
public:
    /// Takes the descriptor over. `room` is how many bytes may still come, by all who share it.
    PipeReader(int descriptor, std::shared_ptr<qsizetype> room);
    ~PipeReader() override;
    Q_DISABLE_COPY_MOVE(PipeReader)

    bool isDone() const { return !m_notifier.isEnabled(); }
    /// What came, once it is done; empty on failure.
    QByteArray bytes() const { return isDone() ? m_bytes : QByteArray(); }

Q_SIGNALS:
    void finished();

private:
    void read();
    void give(const QByteArray &bytes);

    int m_descriptor;
    std::shared_ptr<qsizetype> m_room;
    QSocketNotifier m_notifier;
    QByteArray m_bytes;
};
