#include "cloud/account/AccountSignIn.h"

#include "base/SecretStore.h"
#include "cloud/account/AccountClient.h"
#include "cloud/account/AccountSessionStore.h"
#include "cloud/account/AccountStatus.h"
#include "preferences/Keychain.h"

#include <utility>

using namespace Qt::StringLiterals;

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
