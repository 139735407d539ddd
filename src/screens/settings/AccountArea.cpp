#include "screens/settings/AccountArea.h"

#include "base/Clock.h"
#include "base/Provider.h"
#include "base/Workspace.h"
#include "cloud/account/AccountSession.h"

#include <QLocale>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

QString withoutSeconds(QString timeFormat)
{
    return timeFormat.remove(u":ss"_s).remove(u" t"_s).trimmed();
}

} // namespace

AccountArea::AccountArea(const Needs &needs)
    : m_sessions(needs.sessions),
      m_signIn(needs.signIn),
      m_status(needs.status),
      m_clock(needs.clock),
      m_workspace(needs.workspace)
{
    connect(&m_signIn, &AccountSignIn::changed, this, &AccountArea::changed);
    connect(&m_status, &AccountStatus::changed, this, &AccountArea::changed);
}

AccountArea::~AccountArea()
{
    m_stop.request_stop();
}

void AccountArea::lookForSession()
{
    if (m_sessions.isPending())
        m_sessions.fetch(m_stop.get_token());
}

QString AccountArea::allowance() const
{
    const auto &info = m_status.info();
    if (!info || !info->dailyMinutes)
        return tr("Not known yet");
    return *info->dailyMinutes == 1 ? tr("1 minute a day") : tr("%1 minutes a day").arg(*info->dailyMinutes);
}

QString AccountArea::leftToday() const
{
    const auto seconds = m_status.remainingSeconds();
    return seconds ? AccountStatus::minutesText(*seconds) : tr("Not known yet");
}

QString AccountArea::resendLabel() const
{
    const int seconds = m_signIn.countdown();
    return seconds > 0 ? tr("Resend in %1").arg(seconds) : tr("Resend");
}

QString AccountArea::lastUsed(const QDateTime &time) const
{
    if (!time.isValid())
        return tr("Last used: not known");
    const QDateTime local = time.toTimeZone(m_clock.timeZone());
    const QLocale locale;
    return tr("Last used %1, %2")
        .arg(locale.toString(local.date(), QLocale::ShortFormat),
             locale.toString(local.time(), withoutSeconds(locale.timeFormat())));
}

void AccountArea::manageAccount()
{
    const QString page = Providers::facts(Provider::sayvane).console;
    m_notice =
        m_workspace.open(QUrl(page)) ? QString() : tr("No browser could be opened. The page is %1").arg(page);
    Q_EMIT changed();
}

void AccountArea::checkAccountOnOpen()
{
    if (m_sessions.isPending() || std::exchange(m_didCheckAccount, true) || !m_status.signedIn() ||
        !m_sessions.token())
        return;
    m_signIn.refresh();
    m_signIn.loadDevices();
}
