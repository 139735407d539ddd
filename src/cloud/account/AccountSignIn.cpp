#include "cloud/account/AccountSignIn.h"

#include "base/ComputerName.h"
#include "base/SecretStore.h"
#include "cloud/account/AccountClient.h"
#include "cloud/account/AccountSession.h"
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

QVariantList AccountSignIn::deviceValues() const
{
    QVariantList values;
    for (const DeviceSession &device : m_devices)
        values.append(QVariant::fromValue(device));
    return values;
}

void AccountSignIn::forgetDevices()
{
    m_devices.clear();
    Q_EMIT devicesChanged();
}

void AccountSignIn::loadDevices()
{
    m_listing.request_stop();
    m_listing = std::stop_source();
    const auto token = m_sessions.token();
    m_loadingDevices = token.has_value();
    if (!token)
        return forgetDevices();
    m_devicesError.clear();
    Q_EMIT devicesChanged();
    listDevices(*token, m_listing.get_token());
}

QCoro::Task<> AccountSignIn::listDevices(QString token, std::stop_token stop)
{
    const auto list = co_await m_client.sessions(token, stop);
    if (stop.stop_requested())
        co_return;
    m_loadingDevices = false;
    if (list)
        m_devices = m_sessions.token() ? *list : QList<DeviceSession>();
    else
        m_devicesError = list.error().message;
    Q_EMIT devicesChanged();
}

void AccountSignIn::signOut(const DeviceSession &device)
{
    const auto token = m_sessions.token();
    if (!token)
        return;
    if (device.current)
        return signOutThisMac();
    m_devicesError.clear();
    Q_EMIT devicesChanged();
    revokeDevice(*token, device.id, m_session.get_token());
}

QCoro::Task<> AccountSignIn::revokeDevice(QString token, QString id, std::stop_token stop)
{
    const auto revoked = co_await m_client.revokeSession(token, id, stop);
    if (stop.stop_requested())
        co_return;
    if (revoked)
        co_return loadDevices();
    m_devicesError = revoked.error().message;
    Q_EMIT devicesChanged();
}

void AccountSignIn::signOutThisMac()
{
    leave();
}

QCoro::Task<bool> AccountSignIn::leave()
{
    if (std::exchange(m_leaving, true))
        co_return false;
    const std::stop_token stop = m_stop.get_token();
    m_error.clear();
    Q_EMIT changed();
    const auto token = co_await m_sessions.fetch(stop); // for the service, which has to know whose end it is
    if (stop.stop_requested())
        co_return false;
    int32_t status = m_keychain.read(Keychain::sessionAccount).status;
    if (token || !m_sessions.isPending())
        status = co_await m_sessions.clear();
    if (stop.stop_requested())
        co_return false;
    m_leaving = false;
    if (status != SecretStatus::success) {
        m_rateLimited = false;
        m_error = tr("Couldn't remove from Keychain: %1").arg(m_keychain.message(status));
        Q_EMIT changed();
        co_return false;
    }
    // News of the account that is left must not reach the next one.
    m_listing.request_stop();
    m_session.request_stop();
    m_session = std::stop_source();
    m_account.signOut();
    m_unsavedSession.reset();
    m_needsKeychainRetry = false;
    m_devicesError.clear();
    m_loadingDevices = false;
    forgetDevices();
    reset();
    if (token)
        revoke(*token, stop);
    co_return true;
}

void AccountSignIn::refresh()
{
    if (const auto token = m_sessions.token())
        refresh(*token, m_session.get_token());
}

QCoro::Task<> AccountSignIn::refresh(QString token, std::stop_token stop)
{
    co_await m_client.me(token, stop);
}

QCoro::Task<> AccountSignIn::revoke(QString token, std::stop_token stop)
{
    co_await m_client.logout(token, stop);
}

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
