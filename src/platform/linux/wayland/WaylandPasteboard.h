#pragma once

#include "platform/Pasteboard.h"

#include <QObject>

#include <memory>

class ClipboardOffer;
class ClipboardSource;
class WaylandConnection;
struct zwlr_data_control_device_v1;
struct zwlr_data_control_offer_v1;

/// The clipboard of a Wayland desktop that lets programs without the keyboard use it. It holds one item.
///
/// Text that is put there is marked as secret, by which clipboard managers do not keep it. It goes when
/// the program ends, unless a clipboard manager took it.
class WaylandPasteboard final : public QObject, public Pasteboard
{
    Q_OBJECT
public:
    explicit WaylandPasteboard(WaylandConnection &connection);
    ~WaylandPasteboard() override;
    Q_DISABLE_COPY_MOVE(WaylandPasteboard)

    /// Whether the compositor offers such a clipboard; otherwise nothing may be asked of this one.
    bool isUsable() const { return m_device != nullptr; }

    bool isReachable() const override { return !m_isLost; }
    /// A pending call is never resumed when the pasteboard goes away.
    QCoro::Task<QList<PasteboardItem>> items() override;
    qint64 changeCount() const override { return m_changeCount; }
    void setString(const QString &text) override;
    void setItems(const QList<PasteboardItem> &items) override;

private:
    void listen();
    void adopt(zwlr_data_control_offer_v1 *selected);
    void replace(PasteboardItem contents);

    WaylandConnection &m_connection;
    zwlr_data_control_device_v1 *m_device = nullptr;
    std::unique_ptr<ClipboardOffer> m_announced; // its types are being told
    std::shared_ptr<ClipboardOffer> m_offer;     // what is there
    std::unique_ptr<ClipboardSource> m_source;   // while it is ours
    PasteboardItem m_ours;                       // what we last put there
    qint64 m_changeCount = 0;
    bool m_isLost = false;
};
