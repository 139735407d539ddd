#pragma once

#include <QCoroTask>
#include <QString>

class AccountSignIn;
class AccountStatus;
class Clock;

/// Signing in one question at a time, for those who ask without a screen. An error is one sentence for
/// the user, empty when all went well.
class SignInSteps
{
public:
    SignInSteps(AccountSignIn &signIn, const AccountStatus &account, Clock &clock);

    /// Has a code sent to the address.
    QCoro::Task<QString> sendCode(QString email);

    /// Signs in with the code that was sent. While the keyring refuses the session, which it does until
    /// its owner has opened it, the step tries again for a while; then the session is given up.
    QCoro::Task<QString> submit(QString code);

    /// Who is signed in now; empty when nobody is.
    QString email() const;

private:
    QCoro::Task<> untilDone();

    AccountSignIn &m_signIn;
    const AccountStatus &m_account;
    Clock &m_clock;
};
