#include "screens/settings/ServiceAddress.h"

#include "preferences/Prefs.h"

using namespace Qt::StringLiterals;

ServiceAddress::ServiceAddress(Prefs &prefs) : m_prefs(prefs), m_serviceURLDraft(prefs.accountBaseURL())
{
    connect(&prefs, &Prefs::accountBaseURLChanged, this, [this, inUse = m_serviceURLDraft]() mutable {
        // Somebody else changed it: a field in which nothing was typed follows.
        const bool isUntouched = m_serviceURLDraft == std::exchange(inUse, m_prefs.accountBaseURL());
        if (isUntouched)
            show(inUse);
        Q_EMIT changed();
    });
}

void ServiceAddress::setServiceURLDraft(const QString &text)
{
    if (m_serviceURLDraft == text)
        return;
    m_serviceURLDraft = text;
    if (!std::exchange(m_ignoreNextServiceURLChange, false))
        m_serviceURLError.clear();
    Q_EMIT changed();
}

bool ServiceAddress::canApply() const
{
    return m_serviceURLDraft != m_prefs.accountBaseURL();
}

void ServiceAddress::applyServiceURL()
{
    if (m_serviceURLDraft.trimmed().isEmpty())
        return resetServiceURL();
    if (const auto address = Prefs::validAccountBaseURL(m_serviceURLDraft))
        return store(*address);
    show(m_prefs.accountBaseURL());
    m_serviceURLError =
        tr("That is not an https address. Use one like %1.").arg(m_prefs.defaultAccountBaseURL());
    Q_EMIT changed();
}

void ServiceAddress::resetServiceURL()
{
    store(m_prefs.defaultAccountBaseURL());
}

void ServiceAddress::store(const QString &address)
{
    m_serviceURLError.clear();
    m_prefs.accountBaseURL.set(address);
    show(address);
    Q_EMIT changed();
}

void ServiceAddress::show(const QString &address)
{
    m_ignoreNextServiceURLChange = m_serviceURLDraft != address;
    setServiceURLDraft(address);
}
