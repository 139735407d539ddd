#include "machine/desktop/PasteboardThread.h"

#include <QCoroFuture>
#include <QPromise>

namespace {

using Items = QList<PasteboardItem>;

QCoro::Task<> read(Pasteboard &pasteboard, std::chrono::milliseconds limit,
                   std::shared_ptr<QPromise<Items>> promise)
{
    QCoro::Task<Items> reading = pasteboard.items(limit);
    promise->addResult(co_await reading);
    promise->finish();
}

} // namespace

PasteboardThread::PasteboardThread(const Make &make) : m_context(std::make_unique<QObject>())
{
    m_context->moveToThread(&m_thread);
    m_thread.setObjectName("clipboard");
    m_thread.start();
    const auto begin = [this, &make] { m_pasteboard = make(); };
    QMetaObject::invokeMethod(m_context.get(), begin, Qt::BlockingQueuedConnection);
}

PasteboardThread::~PasteboardThread()
{
    const auto end = [this] { m_pasteboard.reset(); };
    QMetaObject::invokeMethod(m_context.get(), end, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

QCoro::Task<Items> PasteboardThread::items(std::chrono::milliseconds limit)
{
    const auto promise = std::make_shared<QPromise<Items>>();
    promise->start();
    const QFuture<Items> future = promise->future();
    there([limit, promise](Pasteboard &pasteboard) { read(pasteboard, limit, promise); });
    co_return co_await future;
}

void PasteboardThread::setPlainText(const QString &text)
{
    there([&text](Pasteboard &pasteboard) { pasteboard.setString(text); });
}

void PasteboardThread::setItems(const QList<PasteboardItem> &items)
{
    there([&items](Pasteboard &pasteboard) { pasteboard.setItems(items); });
}

void PasteboardThread::there(const std::function<void(Pasteboard &)> &work) const
{
    const auto run = [this, &work] { work(*m_pasteboard); };
    QMetaObject::invokeMethod(m_context.get(), run, Qt::BlockingQueuedConnection);
}
