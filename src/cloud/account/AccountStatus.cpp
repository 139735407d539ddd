#include "cloud/account/AccountStatus.h"

#include "cloud/account/AccountSession.h"
#include "preferences/Keychain.h"
#include "preferences/Prefs.h"

#include <algorithm>

using namespace Qt::StringLiterals;

AccountStatus::AccountStatus(const AccountSessionStore &sessions, Prefs &prefs)
    : m_prefs(prefs),
      m_signedIn(sessions.token().has_value())
{
    // A keyring that was closed, slow or not yet there when the program began.
    connect(&sessions.keychain(), &Keychain::changed, this, [this, &sessions] { mirror(sessions); });
    if (const QString email = m_prefs.accountEmail(); !email.isEmpty())
        m_email = email;
}

void AccountStatus::mirror(const AccountSessionStore &sessions)
{
    if (!m_mirrors || m_signedIn || !sessions.token())
        return;
    m_signedIn = true;
    Q_EMIT changed();
}

void AccountStatus::adopt(const AccountSession &session)
{
    m_mirrors = false;
    m_signedIn = true;
    ++m_session;
    m_email = session.email;
    m_prefs.accountEmail.set(session.email);
    m_info = AccountInfo{.email = session.email,
                         .plan = session.plan,
                         .status = u"active"_s,
                         .dailyMinutes = session.dailyMinutes,
                         .usedTodaySeconds = std::nullopt,
                         .remainingSeconds = std::nullopt};
    m_remainingSeconds.reset();
    Q_EMIT changed();
}

void AccountStatus::signOut()
{
    m_mirrors = false;
    m_signedIn = false;
    ++m_session;
    m_email.reset();
    m_prefs.accountEmail.set(QString());
    m_remainingSeconds.reset();
    m_info.reset();
    Q_EMIT changed();
    Q_EMIT signedOut();
}

bool AccountStatus::dropRejectedSession(AccountSessionStore &sessions)
{
    if (!sessions.token())
        return false;
    sessions.reject();
    signOut();
    Q_EMIT sessionRejected();
    return true;
}

void AccountStatus::setInfo(const AccountInfo &info)
{
    m_info = info;
    if (info.remainingSeconds)
        m_remainingSeconds = std::max<qint64>(*info.remainingSeconds, 0);
    if (m_signedIn && info.email && !info.email->isEmpty()) {
        m_email = info.email;
        m_prefs.accountEmail.set(*info.email);
    }
    Q_EMIT changed();
}

void AccountStatus::setRemainingSeconds(qint64 seconds)
{
    const qint64 left = std::max<qint64>(seconds, 0);
    if (m_remainingSeconds == left)
        return;
    m_remainingSeconds = left;
    Q_EMIT changed();
}

QString AccountStatus::minutesText(qint64 seconds)
{
    if (seconds <= 0)
        return tr("0 minutes");
    if (seconds < 60)
        return tr("under a minute");
    if (seconds < 120)
        return tr("1 minute");
    return tr("%1 minutes").arg(seconds / 60);
}
