#include "platform/linux/x11/X11PasteboardThread.h"

#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/X11Pasteboard.h"

#include <QCoroFuture>
#include <QPromise>

namespace {

using Items = QList<PasteboardItem>;

QCoro::Task<> read(X11Pasteboard &pasteboard, std::shared_ptr<QPromise<Items>> promise)
{
    QCoro::Task<Items> reading = pasteboard.items();
    promise->addResult(co_await reading);
    promise->finish();
}

QCoro::Task<> lend(X11Pasteboard &pasteboard, std::shared_ptr<QPromise<void>> promise)
{
    QCoro::Task<void> lending = pasteboard.lendToPrimary();
    co_await lending;
    promise->finish();
}

} // namespace

struct X11PasteboardThread::Clipboard
{
    explicit Clipboard(const QByteArray &display) : connection(display), pasteboard(connection) {}

    X11Connection connection;
    X11Pasteboard pasteboard;
};

X11PasteboardThread::X11PasteboardThread(const QByteArray &display) : m_context(std::make_unique<QObject>())
{
    m_context->moveToThread(&m_thread);
    m_thread.setObjectName("clipboard");
    m_thread.start();
    const auto open = [this, &display] { m_clipboard = std::make_unique<Clipboard>(display); };
    QMetaObject::invokeMethod(m_context.get(), open, Qt::BlockingQueuedConnection);
}

X11PasteboardThread::~X11PasteboardThread()
{
    const auto close = [this] { m_clipboard.reset(); };
    QMetaObject::invokeMethod(m_context.get(), close, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

QCoro::Task<Items> X11PasteboardThread::items()
{
    const auto promise = std::make_shared<QPromise<Items>>();
    promise->start();
    const QFuture<Items> future = promise->future();
    there([promise](X11Pasteboard &pasteboard) { read(pasteboard, promise); });
    co_return co_await future;
}

bool X11PasteboardThread::isReachable() const
{
    bool reachable = false;
    there([&reachable](X11Pasteboard &pasteboard) { reachable = pasteboard.isReachable(); });
    return reachable;
}

qint64 X11PasteboardThread::changeCount() const
{
    qint64 count = 0;
    there([&count](X11Pasteboard &pasteboard) { count = pasteboard.changeCount(); });
    return count;
}

void X11PasteboardThread::setString(const QString &text)
{
    there([&text](X11Pasteboard &pasteboard) { pasteboard.setString(text); });
}

void X11PasteboardThread::setItems(const QList<PasteboardItem> &items)
{
    there([&items](X11Pasteboard &pasteboard) { pasteboard.setItems(items); });
}

QCoro::Task<void> X11PasteboardThread::lendToPrimary()
{
    const auto promise = std::make_shared<QPromise<void>>();
    promise->start();
    const QFuture<void> future = promise->future();
    there([promise](X11Pasteboard &pasteboard) { lend(pasteboard, promise); });
    co_await future;
}

void X11PasteboardThread::there(const std::function<void(X11Pasteboard &)> &work) const
{
    const auto run = [this, &work] { work(m_clipboard->pasteboard); };
    QMetaObject::invokeMethod(m_context.get(), run, Qt::BlockingQueuedConnection);
}
