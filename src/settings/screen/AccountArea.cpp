#include "settings/screen/AccountArea.h"

#include "account/AccountSessionStore.h"
#include "platform/Clock.h"
#include "platform/Platform.h"
#include "platform/Workspace.h"
#include "settings/screen/OwnKey.h"
#include "settings/screen/SettingsCollaborators.h"

#include <QLocale>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString unknown = u"Not known yet"_s;

QString withoutSeconds(QString timeFormat)
{
    return timeFormat.remove(u":ss"_s).remove(u" t"_s).trimmed();
}

} // namespace

AccountArea::AccountArea(const SettingsCollaborators &with)
    : m_sessions(with.sessions),
      m_signIn(with.signIn),
      m_status(with.accountStatus),
      m_clock(with.platform.clock),
      m_workspace(with.platform.workspace)
{
    connect(&m_signIn, &AccountSignIn::changed, this, &AccountArea::changed);
    connect(&m_status, &AccountStatus::changed, this, &AccountArea::changed);
}

QString AccountArea::allowance() const
{
    const auto &info = m_status.info();
    if (!info || !info->dailyMinutes)
        return unknown;
    return *info->dailyMinutes == 1 ? u"1 minute a day"_s : u"%1 minutes a day"_s.arg(*info->dailyMinutes);
}

QString AccountArea::leftToday() const
{
    const auto seconds = m_status.remainingSeconds();
    return seconds ? AccountStatus::minutesText(*seconds) : unknown;
}

QString AccountArea::resendLabel() const
{
    const int seconds = m_signIn.countdown();
    return seconds > 0 ? u"Resend in %1"_s.arg(seconds) : u"Resend"_s;
}

QString AccountArea::lastUsed(const QDateTime &time) const
{
    if (!time.isValid())
        return u"Last used: not known"_s;
    const QDateTime local = time.toTimeZone(m_clock.timeZone());
    const QLocale locale;
    return u"Last used %1, %2"_s.arg(locale.toString(local.date(), QLocale::ShortFormat),
                                     locale.toString(local.time(), withoutSeconds(locale.timeFormat())));
}

void AccountArea::manageAccount()
{
    const QString page = OwnKey::consoleAddress(Provider::sayvane);
    m_notice =
        m_workspace.open(QUrl(page)) ? QString() : u"No browser could be opened. The page is %1"_s.arg(page);
    Q_EMIT changed();
}

void AccountArea::checkAccountOnOpen()
{
    if (std::exchange(m_didCheckAccount, true) || !m_status.signedIn() || !m_sessions.token())
        return;
    m_signIn.refresh();
    m_signIn.loadDevices();
}
