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
    /// To be made before any thread, and so before the application object, which starts some.
    QuitSignals();
    ~QuitSignals() override;
    Q_DISABLE_COPY_MOVE(QuitSignals)

    /// Announces them from now on, also those that came before. The application object is there.
    void listen();

Q_SIGNALS:
    void received();

private:
    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
