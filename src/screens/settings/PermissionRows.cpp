#include "screens/settings/PermissionRows.h"

#include "base/AccessibilityTrust.h"
#include "base/Workspace.h"

using namespace Qt::StringLiterals;

PermissionRows::PermissionRows(const Microphone &microphone, const AccessibilityTrust &trust,
                               Workspace &workspace)
    : m_microphone(microphone),
      m_trust(trust),
      m_workspace(workspace)
{
}

void PermissionRows::refresh()
{
    const bool trusted = m_trust.isTrusted();
    const Microphone::Authorization microphone = m_microphone.authorization();
    if (trusted == m_axTrusted && microphone == m_micStatus)
        return;
    m_axTrusted = trusted;
    m_micStatus = microphone;
    Q_EMIT changed();
}

void PermissionRows::openMicrophonePane()
{
    open(SettingsPane::microphone,
         tr("This desktop has no settings page for the microphone. Look for its sound settings."));
}

void PermissionRows::openAccessibilityPane()
{
    open(SettingsPane::accessibility, tr("This desktop has no settings page for accessibility."));
}

void PermissionRows::open(SettingsPane pane, const QString &notice)
{
    m_paneNotice = m_workspace.open(pane) ? QString() : notice;
    Q_EMIT changed();
}
