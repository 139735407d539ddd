#pragma once

#include "platform/Pasteboard.h"

#include <QObject>
#include <QThread>

#include <functional>
#include <memory>

class X11Pasteboard;

/// The clipboard on a connection and a thread of its own.
///
/// The windows of this program ask for the clipboard too, and wait for the answer without an event loop: what
/// the program owns has to be answered while its main thread waits.
class X11PasteboardThread final : public Pasteboard
{
public:
    explicit X11PasteboardThread(const QByteArray &display);
    ~X11PasteboardThread() override;
    Q_DISABLE_COPY_MOVE(X11PasteboardThread)

    bool isReachable() const override;
    /// A pending call is never resumed when the pasteboard goes away.
    QCoro::Task<QList<PasteboardItem>> items() override;
    qint64 changeCount() const override;
    void setString(const QString &text) override;
    void setItems(const QList<PasteboardItem> &items) override;

    /// As of X11Pasteboard; once it is done, the server knows.
    QCoro::Task<void> lendToPrimary();

private:
    struct Clipboard;

    void there(const std::function<void(X11Pasteboard &)> &work) const;

    QThread m_thread;
    std::unique_ptr<QObject> m_context; // what runs there is told to it
    std::unique_ptr<Clipboard> m_clipboard;
};
