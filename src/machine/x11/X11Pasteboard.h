#pragma once

#include "base/Pasteboard.h"
#include "machine/desktop/PasteboardThread.h"
#include "machine/x11/SelectionOwner.h"
#include "machine/x11/SelectionSender.h"
#include "machine/x11/X11Connection.h"

#include <QHash>
#include <QObject>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

class SelectionRead;

/// The CLIPBOARD selection, which holds one item.
///
/// Text that is put there is marked as secret, by which clipboard managers do not keep it. What we own is
/// answered from memory and left to a clipboard manager, if one runs, when the program ends. Without a
/// server the contents are simply kept.
class X11Pasteboard final : public QObject, public Pasteboard
{
    Q_OBJECT
public:
    /// An empty name is the display of the environment.
    explicit X11Pasteboard(const QByteArray &display = {});
    ~X11Pasteboard() override;
    Q_DISABLE_COPY_MOVE(X11Pasteboard)

    bool isReachable() const override { return m_connection.isOpen(); }
    /// A pending call is never resumed when the pasteboard goes away.
    QCoro::Task<QList<PasteboardItem>> items(std::chrono::milliseconds limit) override;
    qint64 changeCount() const override { return m_clipboard.changeCount(); }
    bool isOurs() const override { return m_clipboard.isOwner(); }
    qint64 readCount() const override { return m_clipboard.readCount() + m_primary.readCount(); }
    void setItems(const QList<PasteboardItem> &items) override;

    /// Offers the contents as the PRIMARY selection too, for programs that paste nothing else from the
    /// keyboard. When the contents are next replaced, PRIMARY gets back what it was.
    QCoro::Task<void> lendToPrimary();

protected:
    void setPlainText(const QString &text) override;

private:
    struct Shape
    {
        xcb_atom_t type;
        uint8_t format;
    };

    QCoro::Task<SelectionContents> contentsOf(SelectionOwner &selection, std::chrono::milliseconds limit);
    void replace(SelectionContents contents);
    void leaveToClipboardManager();

    X11Connection m_connection;
    SelectionSender m_sender;
    SelectionOwner m_clipboard;
    SelectionOwner m_primary;
    std::optional<SelectionContents> m_borrowedPrimary; // what PRIMARY was before it was lent to
    QHash<xcb_atom_t, Shape> m_shapes;                  // how formats were delivered when last read
    std::vector<std::unique_ptr<SelectionRead>> m_reads;
};

/// The clipboard of an X11 session on a connection and a thread of its own.
class X11PasteboardThread final : public PasteboardThread
{
public:
    explicit X11PasteboardThread(const QByteArray &display);

    /// As of X11Pasteboard; once it is done, the server knows.
    QCoro::Task<void> lendToPrimary();
};
