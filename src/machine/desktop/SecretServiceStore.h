#pragma once

#include "base/Clock.h"
#include "base/Completion.h"
#include "base/Listeners.h"
#include "base/SecretStore.h"
#include "machine/desktop/GlibThread.h"
#include "machine/desktop/Keyring.h"

#include <QCoreApplication>
#include <QObject>

#include <list>
#include <memory>

/// Secrets in the desktop's keyring, by the freedesktop.org Secret Service. Used on the main thread; the
/// keyring is spoken to on a thread of its own, which the first call starts.
///
/// An item has the attributes service, account and profile, so that no profile sees another's items.
/// Both levels of accessibility come to the same here: a keyring opens with the user's login and leaves
/// the computer only when the user carries its file away, encrypted.
///
/// Calls under way when the store is destroyed end as `notAvailable` before its destructor returns.
class SecretServiceStore final : public SecretStore
{
public:
    SecretServiceStore(Clock &clock, QString profile);
    ~SecretServiceStore() override;

    QCoro::Task<Found> find(QString service, QString account, Asking asking, std::stop_token stop) override;
    QCoro::Task<int32_t> add(QString service, QString account, QByteArray data,
                             Accessibility accessibility) override;
    QCoro::Task<int32_t> remove(QString service, QString account) override;
    void follow(const Listener &listener) override { m_listeners.add(listener); }
    std::optional<QString> message(int32_t status) const override;

private:
    template <typename T>
    using Work = std::function<QCoro::Task<T>(Keyring &)>;

    /// Has the work done on the keyring's thread.
    template <typename T>
    QCoro::Task<T> there(Work<T> work, T abandoned);
    template <typename T>
    static QCoro::Task<> serve(Keyring &keyring, Work<T> work, std::function<void(T)> deliver);

    static QCoro::Task<> pass(QCoro::Task<Found> from, std::shared_ptr<Completion<Found>> to);

    Keyring::Attributes attributes(const QString &service, const QString &account) const;
    void start();

    Clock &m_clock;
    QString m_profile;
    Listeners m_listeners;
    std::list<std::function<void()>> m_underWay; // each ends its call at once
    std::unique_ptr<Keyring> m_keyring;          // made, used and destroyed on the thread
    QObject m_here;                              // what comes from there is told to it
    std::unique_ptr<GlibThread> m_thread;

    Q_DECLARE_TR_FUNCTIONS(SecretServiceStore)
};
