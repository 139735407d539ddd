#pragma once

#include "base/Pasteboard.h"

#include <QObject>
#include <QThread>

#include <functional>
#include <memory>

/// A clipboard in a thread of its own, with a connection of its own.
///
/// The windows of this program ask for the clipboard too, and wait for the answer without an event loop: what
/// the program owns has to be answered while its main thread waits.
class PasteboardThread : public Pasteboard
{
public:
    using Make = std::function<std::unique_ptr<Pasteboard>()>;

    /// Makes the clipboard there; done on return. Its counts and states may be asked for from any thread.
    explicit PasteboardThread(const Make &make);
    ~PasteboardThread() override;
    Q_DISABLE_COPY_MOVE(PasteboardThread)

    bool isReachable() const override { return m_pasteboard->isReachable(); }
    /// A pending call is never resumed when the pasteboard goes away.
    QCoro::Task<QList<PasteboardItem>> items(std::chrono::milliseconds limit) override;
    qint64 changeCount() const override { return m_pasteboard->changeCount(); }
    bool isOurs() const override { return m_pasteboard->isOurs(); }
    qint64 readCount() const override { return m_pasteboard->readCount(); }
    void setItems(const QList<PasteboardItem> &items) override;

protected:
    void setPlainText(const QString &text) override;
    /// Does it there; done on return.
    void there(const std::function<void(Pasteboard &)> &work) const;

private:
    QThread m_thread;
    std::unique_ptr<QObject> m_context; // what runs there is told to it
    std::unique_ptr<Pasteboard> m_pasteboard;
};
