#include "machine/QuitSignals.h"

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace {

sigset_t quitSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&set, signal);
    return set;
}

} // namespace

QuitSignals::QuitSignals()
{
    const sigset_t set = quitSignals();
    // Threads inherit the mask, so that the descriptor alone receives the signals.
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    m_descriptor = signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
    if (m_descriptor < 0) {
        pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
        return;
    }
}

void QuitSignals::listen()
{
    if (m_descriptor < 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo information;
        while (read(m_descriptor, &information, sizeof information) > 0)
            Q_EMIT received();
    });
}

QuitSignals::~QuitSignals()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}
