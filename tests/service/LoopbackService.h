#pragma once

#include "Exchange.h"

#include "service/AccountRoutes.h"
#include "service/LabsRoutes.h"

#include <QTemporaryDir>

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

/// The service's own routes behind TLS on a loopback port, in this process and in a time of its own.
class LoopbackService
{
public:
    explicit LoopbackService(AccountRoutes::SignUps signUps = AccountRoutes::SignUps::open);
    ~LoopbackService();

    /// What becomes of the codes that are sent from now on.
    void setDelivery(Mailer::Outcome outcome) { m_outcome = outcome; }
    void end() { m_running.reset(); }
    /// Ends the server and starts another one on the same data.
    void restart(AccountRoutes::SignUps signUps = AccountRoutes::SignUps::open);
    /// The assistants that the next server has.
    void configure(const Assistants &assistants) { m_assistants = std::make_unique<Assistants>(assistants); }
    std::chrono::sys_seconds now() const { return clock()(); }
    void advance(std::chrono::seconds time) { m_seconds += time.count(); }

    Exchange::Answer post(const char *path, const QJsonObject &body, const QByteArray &token = {});
    Exchange::Answer get(const char *path, const QByteArray &token);
    Exchange::Answer send(const QByteArray &request) const;
    /// Asks for a code and returns what was shown of it.
    QString code(const QString &email);
    /// The token of a new session of this address, by a code.
    QByteArray signIn(const QString &email, const QString &device);

    QString lastDevice();
    Accounts &accounts() { return m_running->accounts; }
    std::filesystem::path path(const char *name) const { return m_folder.filePath(QLatin1String(name)).toStdString(); }

private:
    struct Running
    {
        Running(LoopbackService &owner, AccountRoutes::SignUps signUps);
        ~Running();

        Accounts accounts;
        SignIns signIns;
        HttpsServer server;
        AccountRoutes routes;
        LabsRoutes labs;
        int port;
        std::thread thread;
    };

    WallClock clock() const;

    QTemporaryDir m_folder;
    std::atomic<std::int64_t> m_seconds;
    std::atomic<Mailer::Outcome> m_outcome = Mailer::Outcome::sent;
    std::mutex m_mutex; // for what is shown, by the server's threads
    QString m_code;
    QString m_device;
    std::unique_ptr<Assistants> m_assistants = std::make_unique<Assistants>();
    std::unique_ptr<Running> m_running;
};
