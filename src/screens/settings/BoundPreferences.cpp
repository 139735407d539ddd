#include "screens/settings/BoundPreferences.h"

#include "preferences/Defaults.h"
#include "preferences/Prefs.h"

BoundPreferences::BoundPreferences(Defaults &defaults) : m_defaults(defaults)
{
    connect(&defaults, &Defaults::changed, this, &BoundPreferences::changed);
}

bool BoundPreferences::cleanupEnabled() const
{
    return m_defaults.boolean(PrefsKey::cleanupEnabled);
}

void BoundPreferences::setCleanupEnabled(bool on)
{
    m_defaults.set(PrefsKey::cleanupEnabled, on);
}

bool BoundPreferences::restoreClipboard() const
{
    return m_defaults.boolean(PrefsKey::restoreClipboard);
}

void BoundPreferences::setRestoreClipboard(bool on)
{
    m_defaults.set(PrefsKey::restoreClipboard, on);
}

bool BoundPreferences::soundsEnabled() const
{
    return m_defaults.boolean(PrefsKey::soundsEnabled);
}

void BoundPreferences::setSoundsEnabled(bool on)
{
    m_defaults.set(PrefsKey::soundsEnabled, on);
}

bool BoundPreferences::showDashboardOnLaunch() const
{
    return m_defaults.boolean(PrefsKey::showDashboardOnLaunch);
}

void BoundPreferences::setShowDashboardOnLaunch(bool on)
{
    m_defaults.set(PrefsKey::showDashboardOnLaunch, on);
}

bool BoundPreferences::advancedExpanded() const
{
    return m_defaults.boolean(PrefsKey::advancedExpanded);
}

void BoundPreferences::setAdvancedExpanded(bool on)
{
    m_defaults.set(PrefsKey::advancedExpanded, on);
}

QString BoundPreferences::vocabulary() const
{
    return m_defaults.textOrEmpty(PrefsKey::vocabulary);
}

void BoundPreferences::setVocabulary(const QString &terms)
{
    m_defaults.set(PrefsKey::vocabulary, terms);
}

QString BoundPreferences::transcriptionModel() const
{
    return m_defaults.textOrEmpty(PrefsKey::transcriptionModel);
}

void BoundPreferences::setTranscriptionModel(const QString &model)
{
    m_defaults.set(PrefsKey::transcriptionModel, model);
}

QString BoundPreferences::chatModel() const
{
    return m_defaults.textOrEmpty(PrefsKey::chatModel);
}

void BoundPreferences::setChatModel(const QString &model)
{
    m_defaults.set(PrefsKey::chatModel, model);
}
