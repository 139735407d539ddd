#include "cloud/account/AccountSignIn.h"

#include "base/ComputerName.h"
#include "base/SecretStore.h"
#include "cloud/account/AccountClient.h"
#include "cloud/account/AccountSessionStore.h"
#include "cloud/account/AccountStatus.h"
#include "preferences/Keychain.h"

#include <QChar>

#include <algorithm>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qsizetype codeLength = 6;
constexpr qint64 resendPause = 30;

/// The numbers of the text, in any script, as many as a code has.
QList<uint> firstNumbers(const QString &text)
{
    QList<uint> numbers;
    for (const uint character : text.toUcs4()) {
        const QChar::Category category = QChar::category(char32_t{character});
        if (category >= QChar::Number_DecimalDigit && category <= QChar::Number_Other &&
            numbers.size() < codeLength)
            numbers.append(character);
    }
    return numbers;
}

bool isComplete(const QString &code)
{
    return code.toUcs4().size() == codeLength;
}

} // namespace

AccountSignIn::AccountSignIn(const Collaborators &with)
    : m_client(with.client),
      m_sessions(with.sessions),
      m_account(with.account),
      m_keychain(with.keychain),
      m_computerName(with.computerName),
      m_clock(with.clock)
{
    // The list is the business of whoever is signed in.
    connect(&m_account, &AccountStatus::sessionRejected, this, &AccountSignIn::forgetDevices);
}

AccountSignIn::~AccountSignIn()
{
    m_listing.request_stop();
    m_session.request_stop();
    m_stop.request_stop();
}

void AccountSignIn::setEmail(const QString &email)
{
    if (m_email == email)
        return;
    m_email = email;
    Q_EMIT changed();
}

QString AccountSignIn::errorText() const
{
    if (m_error.isEmpty() || !m_rateLimited || m_countdown < 1)
        return m_error;
    return tr("%1 Try again in %2s.").arg(m_error, QString::number(m_countdown));
}

QString AccountSignIn::deviceName() const
{
    return AccountClient::trim(m_computerName.localizedName());
}

void AccountSignIn::sendCode()
{
    const QString address = AccountClient::normalisedEmail(m_email);
    if (!AccountClient::looksLikeEmail(address)) {
        m_rateLimited = false;
        m_error = tr("That does not look like an email address.");
        Q_EMIT changed();
        return;
    }
    if (m_busy || m_needsKeychainRetry)
        return;
    beginRequest();
    requestCode(address, m_generation, m_stop.get_token());
}

void AccountSignIn::beginRequest()
{
    m_busy = true;
    m_error.clear();
    m_rateLimited = false;
    Q_EMIT changed();
}

QCoro::Task<> AccountSignIn::requestCode(QString email, int generation, std::stop_token stop)
{
    const QString device = deviceName();
    const auto lifetime = co_await m_client.requestCode(email, device, stop);
    if (stop.stop_requested() || generation != m_generation)
        co_return;
    m_busy = false;
    if (!lifetime)
        co_return report(lifetime.error());
    m_email = email;
    m_sentTo = email;
    m_stage = Stage::code;
    m_code.clear();
    startCountdown(resendPause);
    Q_EMIT changed();
}

void AccountSignIn::enter(const QString &code)
{
    if (m_busy || m_needsKeychainRetry)
        return;
    const QList<uint> numbers = firstNumbers(code);
    m_code = QString::fromUcs4(reinterpret_cast<const char32_t *>(numbers.constData()), numbers.size());
    Q_EMIT changed(); // also when all that was typed was dropped: the field shows what was kept
    if (isComplete(m_code))
        submit();
}

void AccountSignIn::submit()
{
    if (m_sentTo.isEmpty() || m_busy || m_needsKeychainRetry || !isComplete(m_code))
        return;
    beginRequest();
    verify(m_sentTo, m_code, m_generation, m_stop.get_token());
}

QCoro::Task<> AccountSignIn::verify(QString email, QString code, int generation, std::stop_token stop)
{
    const QString device = deviceName();
    const auto session = co_await m_client.verify(email, code, device, stop);
    if (stop.stop_requested())
        co_return;
    if (generation != m_generation) {
        // The user went back meanwhile: nobody would ever use this session.
        if (session)
            revoke(session->token, stop);
        co_return;
    }
    m_busy = false;
    if (session) {
        store(*session);
        co_return;
    }
    m_code.clear();
    report(session.error());
}

QCoro::Task<> AccountSignIn::store(AccountSession session)
{
    const std::stop_token stop = m_stop.get_token();
    const auto former = m_sessions.token();
    const int generation = m_generation;
    const int turn = ++m_storing;
    m_busy = true; // the keyring may have a question first
    Q_EMIT changed();
    const int32_t status = co_await m_sessions.save(session.token);
    if (stop.stop_requested())
        co_return;
    if (generation != m_generation) {                             // the user went back meanwhile
        if (status == SecretStatus::success && turn == m_storing) // nor is another session behind it
            m_sessions.save(former.value_or(QString()));
        revoke(session.token, stop);
        co_return;
    }
    m_busy = false;
    if (status != SecretStatus::success) {
        m_unsavedSession = session;
        m_needsKeychainRetry = true;
        m_rateLimited = false;
        m_error = tr("Couldn't save the session to the Keychain: %1").arg(m_keychain.message(status));
        Q_EMIT changed();
        co_return;
    }
    m_unsavedSession.reset();
    m_needsKeychainRetry = false;
    m_session.request_stop();
    m_session = std::stop_source();
    m_account.adopt(session);
    if (former && former != session.token)
        revoke(*former, m_stop.get_token()); // nobody would ever end it
    reset();
    refresh();
    loadDevices();
}

void AccountSignIn::retryStore()
{
    if (m_unsavedSession && !m_busy)
        store(*m_unsavedSession);
}

void AccountSignIn::discardUnsavedSession()
{
    if (!m_unsavedSession)
        return;
    const QString token = m_unsavedSession->token;
    m_unsavedSession.reset();
    m_needsKeychainRetry = false;
    revoke(token, m_stop.get_token());
    reset();
}

void AccountSignIn::reset()
{
    ++m_generation;
    m_busy = false;
    m_stage = Stage::email;
    m_sentTo.clear();
    m_code.clear();
    m_error.clear();
    m_rateLimited = false;
    stopCountdown();
    Q_EMIT changed();
}

void AccountSignIn::report(const AccountError &error)
{
    m_rateLimited = error.isRateLimited() || error.retryAfterSeconds.has_value();
    if (m_rateLimited) {
        startCountdown(error.retryAfterSeconds.value_or(resendPause));
        m_error = tr("Too many requests just now."); // the wait is added as it passes
    } else {
        m_error = error.message;
    }
    Q_EMIT changed();
}

void AccountSignIn::startCountdown(qint64 seconds)
{
    stopCountdown();
    m_countdown = static_cast<int>(std::clamp<qint64>(seconds, 0, std::numeric_limits<int>::max()));
    if (m_countdown > 0)
        m_ticker = m_clock.every(1s, [this] { tick(); });
}

void AccountSignIn::stopCountdown()
{
    m_ticker.reset();
    m_countdown = 0;
}

void AccountSignIn::tick()
{
    if (--m_countdown <= 0) {
        stopCountdown();
        m_rateLimited = false;
    }
    Q_EMIT changed();
}
