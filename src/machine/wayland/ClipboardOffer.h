#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QStringList>

#include <memory>

struct zwlr_data_control_offer_v1;

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
