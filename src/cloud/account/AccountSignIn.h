#pragma once

#include "base/Clock.h"
#include "cloud/account/AccountError.h"
#include "cloud/account/AccountSession.h"
#include "cloud/account/DeviceSession.h"

#include <QCoroTask>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariantList>

#include <memory>
#include <optional>
#include <stop_token>

class AccountClient;
class AccountSessionStore;
class AccountStatus;
class ComputerName;
class Keychain;

/// Signing in with an e-mail address and the code sent to it, and the devices that are signed in.
///
/// Texts that are not there are empty. Operations return at once; what comes of them shows in the fields.
class AccountSignIn final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY changed)
    Q_PROPERTY(QString code READ code NOTIFY changed)
    /// Whether the code is asked for, not the address.
    Q_PROPERTY(bool isCodeStage READ isCodeStage NOTIFY changed)
    Q_PROPERTY(QString sentTo READ sentTo NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed)
    Q_PROPERTY(bool canResend READ canResend NOTIFY changed)
    Q_PROPERTY(bool needsKeychainRetry READ needsKeychainRetry NOTIFY changed)
    /// Of `DeviceSession`.
    Q_PROPERTY(QVariantList devices READ deviceValues NOTIFY devicesChanged)
    Q_PROPERTY(QString devicesError READ devicesError NOTIFY devicesChanged)
    Q_PROPERTY(bool loadingDevices READ loadingDevices NOTIFY devicesChanged)
public:
    struct Collaborators
    {
        AccountClient &client;
        AccountSessionStore &sessions;
        AccountStatus &account;
        const Keychain &keychain;
        const ComputerName &computerName;
        Clock &clock;
    };
    enum class Stage { email, code };
    Q_ENUM(Stage)

    explicit AccountSignIn(const Collaborators &with);
    ~AccountSignIn() override;

    /// The address typed by the user.
    const QString &email() const { return m_email; }
    void setEmail(const QString &email);
    /// What was entered of the code: digits of any script, six at most.
    const QString &code() const { return m_code; }
    bool isCodeStage() const { return m_stage == Stage::code; }
    /// The address that the last code was sent to.
    const QString &sentTo() const { return m_sentTo; }
    /// A request of the sign-in is under way.
    bool busy() const { return m_busy; }
    const QString &error() const { return m_error; }
    /// The error as shown, with the wait that a rate limit asks for.
    QString errorText() const;
    /// Seconds until another code may be requested.
    int countdown() const { return m_countdown; }
    /// The last failure was a rate limit that still holds.
    bool rateLimited() const { return m_rateLimited; }
    bool canResend() const { return m_countdown == 0 && !m_busy; }
    /// A session was verified but the keychain refused it; it is kept in memory.
    bool needsKeychainRetry() const { return m_needsKeychainRetry; }
    const QList<DeviceSession> &devices() const { return m_devices; }
    const QString &devicesError() const { return m_devicesError; }
    bool loadingDevices() const { return m_loadingDevices; }

public Q_SLOTS:
    /// Asks for a code for the typed address, be it the first or another one.
    void sendCode();
    /// Takes the text of the code field; the sixth digit submits.
    void enter(const QString &code);
    /// Has the code verified.
    void submit();
    /// Tries again to store the session that the keychain refused.
    void retryStore();
    /// Gives up the session that the keychain refused, on the service too.
    void discardUnsavedSession();
    /// Back to the address. What is under way is forgotten; a session that it brings is ended.
    void reset();
    void loadDevices();
    /// Ends a device's session; that of this computer signs this computer out.
    void signOut(const DeviceSession &device);
    /// Signs this computer out, as `leave` does.
    void signOutThisMac();
    /// Asks the service anew what it says of the account; does nothing without a session.
    void refresh();

public:
    /// Saves a verified session and signs in. A session from before ends on the service.
    QCoro::Task<> store(AccountSession session);
    /// Signs this computer out here and then on the service, which is not waited for. When the keychain does
    /// not let the session go, nothing changes; false then, and the error says why.
    QCoro::Task<bool> leave();

Q_SIGNALS:
    void changed();
    void devicesChanged();

private:
    QCoro::Task<> requestCode(QString email, int generation, std::stop_token stop);
    QCoro::Task<> verify(QString email, QString code, int generation, std::stop_token stop);
    QCoro::Task<> refresh(QString token, std::stop_token stop);
    QCoro::Task<> revoke(QString token, std::stop_token stop);
    QCoro::Task<> listDevices(QString token, std::stop_token stop);
    QCoro::Task<> revokeDevice(QString token, QString id, std::stop_token stop);

    void beginRequest();
    void report(const AccountError &error);
    void startCountdown(qint64 seconds);
    void stopCountdown();
    void tick();
    void forgetDevices();
    QString deviceName() const;
    QVariantList deviceValues() const;

    AccountClient &m_client;
    AccountSessionStore &m_sessions;
    AccountStatus &m_account;
    const Keychain &m_keychain;
    const ComputerName &m_computerName;
    Clock &m_clock;

    QString m_email;
    QString m_code;
    Stage m_stage = Stage::email;
    QString m_sentTo;
    bool m_busy = false;
    QString m_error;
    int m_countdown = 0;
    bool m_rateLimited = false;
    bool m_needsKeychainRetry = false;
    bool m_leaving = false;
    std::optional<AccountSession> m_unsavedSession;
    int m_generation = 0; // raised by every reset: what was begun under an older one is dropped
    int m_storing = 0;    // sessions that were to be stored so far
    std::unique_ptr<Timer> m_ticker;

    QList<DeviceSession> m_devices;
    QString m_devicesError;
    bool m_loadingDevices = false;

    std::stop_source m_listing; // stopped when a newer list is asked for
    std::stop_source m_session; // stopped when the session is another or none
    std::stop_source m_stop;    // stopped when this object goes away
};
