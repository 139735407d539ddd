#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/// Turns the signals that ask a program to end (SIGINT, SIGTERM, SIGHUP) into an orderly quit: they are
/// announced from the event loop instead of ending the process. One at a time per process.
class QuitSignals final : public QObject
{
    Q_OBJECT
public:
    /// Keeps the signals waiting. To be called before any thread starts, the application object's own among
    /// them: threads inherit it, and one that does not would end the process.
    static void hold();

    /// To be made after the application object.
    QuitSignals();
    ~QuitSignals() override;
    Q_DISABLE_COPY_MOVE(QuitSignals)

Q_SIGNALS:
    void received();

private:
    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
