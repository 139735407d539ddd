#include "control/SignInSteps.h"

#include "account/AccountSignIn.h"
#include "account/AccountStatus.h"
#include "platform/Sleep.h"

#include <QCoroSignal>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Long enough to type the keyring's password.
constexpr int storeAttempts = 60;
constexpr auto storePause = 1s;

} // namespace

SignInSteps::SignInSteps(AccountSignIn &signIn, const AccountStatus &account, Clock &clock)
    : m_signIn(signIn),
      m_account(account),
      m_clock(clock)
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
    for (int attempt = 1; m_signIn.needsKeychainRetry() && attempt < storeAttempts; ++attempt) {
        co_await sleepFor(m_clock, storePause, {});
        m_signIn.retryStore();
    }
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
