#include "machine/x11/X11PasteboardThread.h"

#include "machine/x11/X11Pasteboard.h"

#include <QCoroFuture>
#include <QPromise>

namespace {

QCoro::Task<> lend(X11Pasteboard &pasteboard, std::shared_ptr<QPromise<void>> promise)
{
    QCoro::Task<void> lending = pasteboard.lendToPrimary();
    co_await lending;
    promise->finish();
}

} // namespace

X11PasteboardThread::X11PasteboardThread(const QByteArray &display)
    : PasteboardThread([&display] { return std::make_unique<X11Pasteboard>(display); })
{
}

QCoro::Task<void> X11PasteboardThread::lendToPrimary()
{
    const auto promise = std::make_shared<QPromise<void>>();
    promise->start();
    const QFuture<void> future = promise->future();
    there([promise](Pasteboard &pasteboard) { lend(static_cast<X11Pasteboard &>(pasteboard), promise); });
    co_await future;
}
