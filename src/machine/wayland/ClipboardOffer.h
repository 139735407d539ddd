#pragma once

#include <QObject>
#include <QStringList>

#include <memory>

class PipeReader;
struct zwlr_data_control_offer_v1;

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
