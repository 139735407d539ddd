#pragma once

#include "screens/settings/AccountArea.h"
#include "screens/settings/BoundPreferences.h"
#include "screens/settings/ConnectionTest.h"
#include "screens/settings/KeyRow.h"
#include "screens/settings/LanguageChoice.h"
#include "screens/settings/PermissionRows.h"
#include "screens/settings/ServiceAddress.h"
#include "screens/settings/SettingsCollaborators.h"
#include "screens/settings/ShortcutRows.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <memory>

class Clock;
class Timer;

/// One settings form: what it shows and does. The preferences belong to the program; all else lives and
/// dies with the form.
class SettingsView final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(BoundPreferences *preferences READ preferences CONSTANT)
    Q_PROPERTY(AccountArea *account READ account CONSTANT)
    Q_PROPERTY(ConnectionTest *connection READ connection CONSTANT)
    Q_PROPERTY(KeyRow *key READ key CONSTANT)
    Q_PROPERTY(ServiceAddress *service READ service CONSTANT)
    Q_PROPERTY(LanguageChoice *language READ language CONSTANT)
    Q_PROPERTY(PermissionRows *permissions READ permissions CONSTANT)
    Q_PROPERTY(ShortcutRows *shortcut READ shortcut CONSTANT)
    /// Maps of "value" and "text".
    Q_PROPERTY(QVariantList providers READ providers CONSTANT)
    Q_PROPERTY(QString providerSelection READ providerSelection WRITE setProviderSelection NOTIFY changed)
    Q_PROPERTY(QString providerName READ providerName NOTIFY changed)
    Q_PROPERTY(bool usesOwnKey READ usesOwnKey NOTIFY changed)
    Q_PROPERTY(QString advancedLabel READ advancedLabel NOTIFY changed)
    Q_PROPERTY(QString transcriptionCaption READ transcriptionCaption NOTIFY changed)
    Q_PROPERTY(QString cleanupCaption READ cleanupCaption NOTIFY changed)
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY changed)
public:
    explicit SettingsView(const SettingsCollaborators &with, QObject *parent = nullptr);
    ~SettingsView() override;

    BoundPreferences *preferences() { return &m_preferences; }
    AccountArea *account() { return &m_account; }
    ConnectionTest *connection() { return &m_connection; }
    KeyRow *key() { return &m_key; }
    ServiceAddress *service() { return &m_service; }
    LanguageChoice *language() { return &m_language; }
    PermissionRows *permissions() { return &m_permissions; }
    ShortcutRows *shortcut() { return &m_shortcut; }

    static QVariantList providers();
    /// The raw value of the provider in use.
    QString providerSelection() const;
    void setProviderSelection(const QString &rawValue);
    QString providerName() const;
    bool usesOwnKey() const;
    QString advancedLabel() const;
    QString transcriptionCaption() const;
    QString cleanupCaption() const;

    /// Whether somebody can see the form: while they can, what changes outside the program is looked up
    /// every two seconds.
    bool shown() const { return m_ticker != nullptr; }
    void setShown(bool shown);

    /// Stores the provider's default models.
    Q_INVOKABLE void resetModels();

Q_SIGNALS:
    void changed();

private:
    void providerChanged(const QString &from, const QString &to);
    /// What opening the form brings about, as soon as the keychain has answered.
    void decideOnOpen();
    void autoExpandAdvancedIfNeeded();
    void refresh();

    Clock &m_clock;
    Defaults &m_defaults;
    Prefs &m_prefs;
    BoundPreferences m_preferences;
    AccountArea m_account;
    ConnectionTest m_connection;
    KeyRow m_key;
    ServiceAddress m_service;
    LanguageChoice m_language;
    PermissionRows m_permissions;
    ShortcutRows m_shortcut;
    QString m_providerRaw;
    bool m_didAutoExpandAdvanced = false;
    std::unique_ptr<Timer> m_ticker;
};
