#pragma once

#include "machine/desktop/GlibThread.h"

#include <QByteArray>
#include <QObject>
#include <QThread>

#include <atomic>
#include <memory>

/// Whether the object that has the keyboard is a terminal, as it tells screen readers (AT-SPI, the Assistive
/// Technology Service Provider Interface).
///
/// Other programs answer, or do not: they are asked in a thread apart, and for a moment only.
class FocusedObject
{
public:
    FocusedObject();
    ~FocusedObject();
    Q_DISABLE_COPY_MOVE(FocusedObject)

    /// Asks the program with that process number, over the accessibility bus at that address. The answer to
    /// an earlier question is forgotten.
    void ask(const QByteArray &busAddress, qint64 pid);
    /// Whether that program has answered so; false until then, and where no answer comes.
    bool isTerminal(qint64 pid) const { return pid > 0 && m_terminalOf == pid; }

private:
    GlibPointer<GCancellable> m_end;
    QThread m_thread; // runs from the first question on
    std::unique_ptr<QObject> m_context;
    std::atomic<bool> m_isAsking = false;
    std::atomic<qint64> m_terminalOf = 0; // the process whose focus is a terminal
};
