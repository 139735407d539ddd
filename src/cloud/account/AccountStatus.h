#pragma once

#include "cloud/account/AccountInfo.h"

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
    Q_PROPERTY(bool signedIn READ signedIn NOTIFY changed)
    /// Empty when not known.
    Q_PROPERTY(QString email READ emailText NOTIFY changed)
    /// One line describing the account; empty when nothing is known of it.
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
public:
    AccountStatus(const AccountSessionStore &sessions, Prefs &prefs);

    bool signedIn() const { return m_signedIn; }
    /// Another number after each sign-in and sign-out. What a request brings that was begun under another one
    /// is news of a session that is over.
    int session() const { return m_session; }
    const std::optional<QString> &email() const { return m_email; }
    const std::optional<AccountInfo> &info() const { return m_info; }
    /// Seconds of dictation left today, never negative; none until the service said so.
    std::optional<qint64> remainingSeconds() const { return m_remainingSeconds; }

    QString summary() const { return m_info ? m_info->summary() : QString(); }

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
    /// Nobody is signed in any more, whoever ended it.
    void signedOut();
    /// The service no longer accepts the session that was stored here.
    void sessionRejected();

private:
    void mirror(const AccountSessionStore &sessions);
    QString emailText() const { return m_email.value_or(QString()); }

    Prefs &m_prefs;
    bool m_signedIn = false;
    bool m_mirrors = true; // until the program itself signs in or out
    int m_session = 0;
    std::optional<QString> m_email;
    std::optional<AccountInfo> m_info;
    std::optional<qint64> m_remainingSeconds;
};
