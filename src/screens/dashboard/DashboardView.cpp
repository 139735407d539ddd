#include "screens/dashboard/DashboardView.h"

#include "base/Clock.h"
#include "cloud/account/Credentials.h"
#include "preferences/Keychain.h"
#include "preferences/Prefs.h"
#include "screens/dashboard/DashboardNavigation.h"

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

DashboardView::DashboardView(const Needs &needs)
    : m_needs(needs),
      m_hasCredential(needs.credentials.hasCredential(needs.prefs.provider())),
      m_day(today())
{
    connect(&m_needs.credentials.keychain(), &Keychain::changed, this, &DashboardView::refreshCredential);
    connect(&m_needs.prefs, &Prefs::providerChanged, this, &DashboardView::changed);
}

DashboardView::~DashboardView() = default;

QVariantList DashboardView::sections() const
{
    QVariantList sections;
    for (const DashboardSection section : DashboardSection::allCases)
        sections.append(QVariant::fromValue(section));
    return sections;
}

bool DashboardView::usesOwnKey() const
{
    return m_needs.prefs.provider() != Provider::sayvane;
}

QString DashboardView::bannerMessage() const
{
    return usesOwnKey() ? tr("Add a transcription key under Settings, Advanced")
                        : tr("Sign in under Settings to start dictating");
}

void DashboardView::setShown(bool shown)
{
    if (shown == isShown())
        return;
    if (shown) {
        m_ticker = m_needs.clock.every(2s, [this] { tick(); });
        m_day = {};
        tick();
    } else {
        Q_EMIT closing();
        m_ticker.reset();
    }
    Q_EMIT changed();
}

void DashboardView::tick()
{
    if (std::exchange(m_day, today()) != m_day)
        Q_EMIT dayBegan();
    refreshCredential();
}

void DashboardView::refreshCredential()
{
    const bool hasCredential = m_needs.credentials.hasCredential(m_needs.prefs.provider());
    if (std::exchange(m_hasCredential, hasCredential) != hasCredential)
        Q_EMIT changed();
}

QDate DashboardView::today() const
{
    return m_needs.clock.now().toTimeZone(m_needs.clock.timeZone()).date();
}

void DashboardView::openSettings()
{
    if (usesOwnKey())
        m_needs.prefs.advancedExpanded.set(true);
    m_needs.navigation.setSection(DashboardSection::settings);
}
