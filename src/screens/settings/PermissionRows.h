#pragma once

#include "base/Microphone.h"

#include <QObject>
#include <QString>

class AccessibilityTrust;
class Workspace;
enum class SettingsPane;

/// What the system lets the program do, and the way to its settings.
class PermissionRows final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool axTrusted READ axTrusted NOTIFY changed)
    Q_PROPERTY(bool micGranted READ micGranted NOTIFY changed)
    Q_PROPERTY(QString paneNotice READ paneNotice NOTIFY changed)
public:
    PermissionRows(const Microphone &microphone, const AccessibilityTrust &trust, Workspace &workspace);

    bool axTrusted() const { return m_axTrusted; }
    Microphone::Authorization micStatus() const { return m_micStatus; }
    bool micGranted() const { return m_micStatus == Microphone::Authorization::authorized; }
    /// Why no settings opened; empty unless a button just asked for them in vain.
    const QString &paneNotice() const { return m_paneNotice; }

    /// Asks the system again.
    void refresh();

    Q_INVOKABLE void openMicrophonePane();
    Q_INVOKABLE void openAccessibilityPane();

Q_SIGNALS:
    void changed();

private:
    void open(SettingsPane pane, const QString &notice);

    const Microphone &m_microphone;
    const AccessibilityTrust &m_trust;
    Workspace &m_workspace;
    bool m_axTrusted = false;
    Microphone::Authorization m_micStatus = Microphone::Authorization::notDetermined;
    QString m_paneNotice;
};
