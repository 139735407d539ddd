#pragma once

#include "base/Pasteboard.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QStringList>

#include <memory>

struct zwlr_data_control_manager_v1;
struct zwlr_data_control_offer_v1;
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

/// What a program put on the clipboard.
class ClipboardOffer final : public QObject
{
    Q_OBJECT
public:
    /// Takes the offer over.
    explicit ClipboardOffer(zwlr_data_control_offer_v1 *offer);
    ~ClipboardOffer() override;
    Q_DISABLE_COPY_MOVE(ClipboardOffer)

    zwlr_data_control_offer_v1 *id() const { return m_offer; }
    const QStringList &types() const { return m_types; }
    /// Asks for the data in one of the types; the request leaves when the connection is flushed. Null when
    /// there is no pipe to be had. For the room, see PipeReader.
    std::unique_ptr<PipeReader> read(const QString &type, const std::shared_ptr<qsizetype> &room) const;

private:
    zwlr_data_control_offer_v1 *m_offer;
    QStringList m_types;
};
