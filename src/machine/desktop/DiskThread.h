#pragma once

#include "base/Background.h"

#include <QThreadPool>

/// A thread for files, which goes when there has been nothing to do for a while.
class DiskThread final : public Background
{
public:
    DiskThread();

    void run(QObject &context, std::function<void()> work, std::function<void()> then) override;
    void finish() override;

private:
    QThreadPool m_pool; // of one, so that work is done in order
};
