#pragma once

#include "machine/desktop/PasteboardThread.h"
#include "machine/wayland/WaylandConnection.h"

#include <QObject>

#include <atomic>
#include <memory>

class ClipboardOffer;
class ClipboardSource;
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
    /// Over a connection of its own, to the compositor that WAYLAND_DISPLAY names.
    WaylandPasteboard();
    ~WaylandPasteboard() override;
    Q_DISABLE_COPY_MOVE(WaylandPasteboard)

    /// In a thread of its own.
    class Thread;
    /// Null where no compositor offers such a clipboard.
    static std::unique_ptr<Thread> inThread();

    bool isReachable() const override { return !m_isLost; }
    /// A pending call is never resumed when the pasteboard goes away.
    QCoro::Task<QList<PasteboardItem>> items(std::chrono::milliseconds limit) override;
    qint64 changeCount() const override { return m_changeCount; }
    bool isOurs() const override { return m_isOurs; }
    qint64 readCount() const override { return m_readCount; }
    void setItems(const QList<PasteboardItem> &items) override;

    /// Offers what we put there last as the PRIMARY selection too, until it is replaced.
    void lendToPrimary();

protected:
    void setPlainText(const QString &text) override;

private:
    void listen();
    void adopt(zwlr_data_control_offer_v1 *selected);
    void replace(PasteboardItem contents);

    WaylandConnection m_connection;
    zwlr_data_control_device_v1 *m_device = nullptr;
    std::unique_ptr<ClipboardOffer> m_announced; // its types are being told
    std::shared_ptr<ClipboardOffer> m_offer;     // what is there
    std::unique_ptr<ClipboardSource> m_source;   // while it is ours
    std::unique_ptr<ClipboardSource> m_lent;     // to PRIMARY
    PasteboardItem m_ours;                       // what we last put there
    std::atomic<qint64> m_changeCount = 0;
    std::atomic<qint64> m_readCount = 0;
    std::atomic<bool> m_isOurs = false;
    std::atomic<bool> m_isLost; // or never there
};

class WaylandPasteboard::Thread final : public PasteboardThread
{
public:
    Thread() : PasteboardThread([] { return std::make_unique<WaylandPasteboard>(); }) {}

    void lendToPrimary()
    {
        there([](Pasteboard &pasteboard) { static_cast<WaylandPasteboard &>(pasteboard).lendToPrimary(); });
    }
};
