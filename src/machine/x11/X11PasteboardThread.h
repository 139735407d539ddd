#pragma once

#include "machine/desktop/PasteboardThread.h"

/// The clipboard of an X11 session on a connection and a thread of its own.
class X11PasteboardThread final : public PasteboardThread
{
public:
    explicit X11PasteboardThread(const QByteArray &display);

    /// As of X11Pasteboard; once it is done, the server knows.
    QCoro::Task<void> lendToPrimary();
};
