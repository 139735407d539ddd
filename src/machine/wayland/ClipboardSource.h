#pragma once

#include "base/Pasteboard.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

struct zwlr_data_control_manager_v1;
struct zwlr_data_control_source_v1;

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

/// What we put on the clipboard, given from memory to whoever asks.
class ClipboardSource final : public QObject
{
    Q_OBJECT
public:
    /// What is asked for is delivered in the parent's time, also when the source has gone.
    ClipboardSource(zwlr_data_control_manager_v1 *clipboards, PasteboardItem contents, QObject *parent);
    ~ClipboardSource() override;
    Q_DISABLE_COPY_MOVE(ClipboardSource)

    zwlr_data_control_source_v1 *id() const { return m_source; }

Q_SIGNALS:
    void asked(const QString &type);
    /// The clipboard is somebody else's now.
    void cancelled();

private:
    void send(const QString &type, int descriptor);

    zwlr_data_control_source_v1 *m_source;
    PasteboardItem m_contents;
};
