#pragma once

#include <QCoroTask>
#include <QString>

class AccountSignIn;
class AccountStatus;

/// Signing in one question at a time, for those who ask without a screen. An error is one sentence for
/// the user, empty when all went well.
class SignInSteps
{
public:
    SignInSteps(AccountSignIn &signIn, const AccountStatus &account);

    /// Has a code sent to the address.
    QCoro::Task<QString> sendCode(QString email);

    /// Signs in with the code that was sent, once the keyring's owner has answered what it asks. A session
    /// that the keyring refuses is given up.
    QCoro::Task<QString> submit(QString code);

    /// Who is signed in now; empty when nobody is.
    QString email() const;

private:
    QCoro::Task<> untilDone();

    AccountSignIn &m_signIn;
    const AccountStatus &m_account;
};
