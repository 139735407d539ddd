#include "program/SignInSteps.h"

#include "cloud/account/AccountSignIn.h"
#include "cloud/account/AccountStatus.h"

#include <QCoroSignal>

using namespace Qt::StringLiterals;

SignInSteps::SignInSteps(AccountSignIn &signIn, const AccountStatus &account)
    : m_signIn(signIn),
      m_account(account)
{
}

QCoro::Task<QString> SignInSteps::sendCode(QString email)
{
    if (m_signIn.needsKeychainRetry())
        co_return u"Signed in, but the session could not be saved to the Keychain."_s;
    m_signIn.reset();
    m_signIn.setEmail(email);
    m_signIn.sendCode();
    co_await untilDone();
    co_return m_signIn.errorText();
}

QCoro::Task<QString> SignInSteps::submit(QString code)
{
    if (!m_signIn.isCodeStage())
        co_return u"No code was sent yet."_s;
    m_signIn.enter(code);
    if (!m_signIn.busy())
        co_return u"The code has six digits."_s;
    co_await untilDone();
    const QString error = m_signIn.errorText();
    m_signIn.discardUnsavedSession();
    co_return error;
}

QCoro::Task<> SignInSteps::untilDone()
{
    while (m_signIn.busy())
        co_await qCoro(&m_signIn, &AccountSignIn::changed);
}

QString SignInSteps::email() const
{
    return m_account.email().value_or(QString());
}
