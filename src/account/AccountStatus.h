#pragma once

#include "account/AccountInfo.h"

#include <QObject>
#include <QString>

#include <optional>

class AccountSessionStore;
class Prefs;
struct AccountSession;

/// The account as the whole program sees it: signed in or not, as whom, and how much is left today.
class AccountStatus final : public QObject
{
    Q_OBJECT
public:
    AccountStatus(const AccountSessionStore &sessions, Prefs &prefs);

    bool signedIn() const { return m_signedIn; }
    const std::optional<QString> &email() const { return m_email; }
    const std::optional<AccountInfo> &info() const { return m_info; }
    /// Seconds of dictation left today, never negative; none until the service said so.
    std::optional<qint64> remainingSeconds() const { return m_remainingSeconds; }

    /// Takes over a freshly verified session.
    void adopt(const AccountSession &session);

    /// Forgets the account in memory and preferences. The keychain is the caller's to clear.
    void signOut();

    /// The service rejected this computer's session: forgets it everywhere and announces it. False, with
    /// nothing changed, when no session is stored any more.
    bool dropRejectedSession(AccountSessionStore &sessions);

    void setInfo(const AccountInfo &info);
    /// A negative number counts as 0.
    void setRemainingSeconds(qint64 seconds);

    /// An amount of time left in words, such as "4 minutes".
    static QString minutesText(qint64 seconds);

Q_SIGNALS:
    void changed();
    /// The service no longer accepts the session that was stored here.
    void sessionRejected();

private:
    Prefs &m_prefs;
    bool m_signedIn = false;
    std::optional<QString> m_email;
    std::optional<AccountInfo> m_info;
    std::optional<qint64> m_remainingSeconds;
};
