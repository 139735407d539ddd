#pragma once

#include <functional>

class QObject;

/// Work that may wait for a disk, done in order beside the main thread, which never waits for it.
class Background
{
public:
    virtual ~Background() = default;

    /// Does the work when all that was given before is done. Then it is the main thread's turn, from its
    /// event loop, unless the context is gone by then; who goes must call `finish` first.
    virtual void run(QObject &context, std::function<void()> work, std::function<void()> then) = 0;

    /// Waits until all the work is done. What was to follow it on the main thread is dropped with its
    /// context.
    virtual void finish() = 0;
};
