#pragma once

#include "cloud/account/AccountSignIn.h"
#include "cloud/account/AccountStatus.h"

#include <QDateTime>
#include <QObject>
#include <QString>

#include <stop_token>

class AccountSessionStore;
class Clock;
class Workspace;

/// The account in the form: signing in, or the account that is signed in and its devices.
class AccountArea final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(AccountSignIn *signIn READ signIn CONSTANT)
    Q_PROPERTY(AccountStatus *status READ status CONSTANT)
    Q_PROPERTY(QString allowance READ allowance NOTIFY changed)
    Q_PROPERTY(QString leftToday READ leftToday NOTIFY changed)
    Q_PROPERTY(QString resendLabel READ resendLabel NOTIFY changed)
    Q_PROPERTY(QString notice READ notice NOTIFY changed)
public:
    struct Needs
    {
        AccountSessionStore &sessions;
        AccountStatus &status;
        AccountSignIn &signIn;
        const Clock &clock;
        Workspace &workspace;
    };
    explicit AccountArea(const Needs &needs);
    ~AccountArea() override;

    AccountSignIn *signIn() { return &m_signIn; }
    AccountStatus *status() { return &m_status; }

    /// What the plan gives a day, and what is left of it.
    QString allowance() const;
    QString leftToday() const;
    /// The action that asks for another code, with the wait until it can.
    QString resendLabel() const;
    /// Why no browser opened; empty unless it was just asked for in vain.
    const QString &notice() const { return m_notice; }

    /// When a device was last heard of, in the user's own time.
    Q_INVOKABLE QString lastUsed(const QDateTime &time) const;
    /// Opens the account's page.
    Q_INVOKABLE void manageAccount();

    /// Looks for a session that is not known; the owner of a closed keyring may be asked to open it.
    void lookForSession();
    /// Asks the service for news of the account, once per form and not before the session is known.
    void checkAccountOnOpen();

Q_SIGNALS:
    void changed();

private:
    AccountSessionStore &m_sessions;
    AccountSignIn &m_signIn;
    AccountStatus &m_status;
    const Clock &m_clock;
    Workspace &m_workspace;
    QString m_notice;
    bool m_didCheckAccount = false;
    std::stop_source m_stop; // stopped when this object goes away
};
