#include "machine/desktop/DiskThread.h"

#include <QObject>

DiskThread::DiskThread()
{
    m_pool.setMaxThreadCount(1);
}

void DiskThread::run(QObject &context, std::function<void()> work, std::function<void()> then)
{
    m_pool.start([&context, work = std::move(work), then = std::move(then)] {
        work();
        if (then)
            QMetaObject::invokeMethod(&context, then, Qt::QueuedConnection);
    });
}

void DiskThread::finish()
{
    m_pool.waitForDone();
}
