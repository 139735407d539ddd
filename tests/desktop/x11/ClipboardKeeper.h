#pragma once

#include <QThread>

/// A clipboard manager: at the end of a program it takes over what the program had on the clipboard. It
/// lives in a thread of its own, since the ending program waits for it.
class ClipboardKeeper
{
public:
    /// At work on return.
    ClipboardKeeper();
    ~ClipboardKeeper();
    Q_DISABLE_COPY_MOVE(ClipboardKeeper)

private:
    QThread m_thread;
    QObject m_context; // lives in the thread
};
