#pragma once

#include "preferences/Prefs.h"
#include "screens/settings/AccountArea.h"
#include "screens/settings/KeyRow.h"
#include "screens/settings/LanguageChoice.h"
#include "screens/settings/ServiceAddress.h"
#include "screens/settings/ShortcutRows.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <memory>

class HotkeyRecorder;
class Timer;
struct Platform;
enum class SettingsPane;

/// One settings form: what it shows and does. The preferences belong to the program; all else lives and
/// dies with the form.
class SettingsView final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Prefs *preferences READ preferences CONSTANT)
    Q_PROPERTY(AccountArea *account READ account CONSTANT)
    Q_PROPERTY(KeyRow *key READ key CONSTANT)
    Q_PROPERTY(ServiceAddress *service READ service CONSTANT)
    Q_PROPERTY(LanguageChoice *language READ language CONSTANT)
    Q_PROPERTY(ShortcutRows *shortcut READ shortcut CONSTANT)
    /// Maps of "value" and "text".
    Q_PROPERTY(QVariantList providers READ providers CONSTANT)
    Q_PROPERTY(QString providerSelection READ providerSelection WRITE setProviderSelection NOTIFY changed)
    Q_PROPERTY(QString providerName READ providerName NOTIFY changed)
    Q_PROPERTY(bool usesOwnKey READ usesOwnKey NOTIFY changed)
    Q_PROPERTY(QString advancedLabel READ advancedLabel NOTIFY changed)
    Q_PROPERTY(QString transcriptionCaption READ transcriptionCaption NOTIFY changed)
    Q_PROPERTY(QString cleanupCaption READ cleanupCaption NOTIFY changed)
    Q_PROPERTY(bool axTrusted READ axTrusted NOTIFY changed)
    Q_PROPERTY(bool micGranted READ micGranted NOTIFY changed)
    Q_PROPERTY(QString paneNotice READ paneNotice NOTIFY changed)
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY changed)
public:
    /// What a form works on. Everything outlives the forms.
    struct Needs
    {
        Platform &platform;
        Prefs &prefs;
        Keychain &keychain;
        AccountSessionStore &sessions;
        AccountStatus &accountStatus;
        AccountSignIn &signIn;
        Transcriber &transcriber;
        HotkeyRecorder &recorder;
        /// Stores a shortcut and puts it in the place of the installed one.
        std::function<void(const HotkeySpec &)> updateHotkey;
    };
    explicit SettingsView(const Needs &needs, QObject *parent = nullptr);
    ~SettingsView() override;

    Prefs *preferences() { return &m_prefs; }
    AccountArea *account() { return &m_account; }
    KeyRow *key() { return &m_key; }
    ServiceAddress *service() { return &m_service; }
    LanguageChoice *language() { return &m_language; }
    ShortcutRows *shortcut() { return &m_shortcut; }

    static QVariantList providers();
    /// The raw value of the provider in use; one that there is not is not taken.
    QString providerSelection() const { return Providers::rawValue(m_provider); }
    void setProviderSelection(const QString &rawValue);
    QString providerName() const { return Providers::displayName(m_provider); }
    bool usesOwnKey() const { return !Providers::keychainAccount(m_provider).isEmpty(); }
    /// The label of the group that holds everything about keys.
    QString advancedLabel() const;
    /// What the model fields may hold; empty for the hosted service.
    QString transcriptionCaption() const;
    QString cleanupCaption() const;

    /// What the system lets the program do, as last looked up.
    bool axTrusted() const { return m_axTrusted; }
    bool micGranted() const { return m_micGranted; }
    /// Why no settings of the system opened; empty unless a button just asked for them in vain.
    const QString &paneNotice() const { return m_paneNotice; }
    Q_INVOKABLE void openMicrophonePane();
    Q_INVOKABLE void openAccessibilityPane();

    /// Whether somebody can see the form: while they can, what changes outside the program is looked up
    /// every two seconds.
    bool shown() const { return m_ticker != nullptr; }
    void setShown(bool shown);

    /// Stores the provider's default models.
    Q_INVOKABLE void resetModels();

Q_SIGNALS:
    void changed();

private:
    void providerChanged();
    /// What opening the form brings about, as soon as the keychain has answered.
    void decideOnOpen();
    void autoExpandAdvancedIfNeeded();
    void refresh();
    void open(SettingsPane pane, const QString &notice);

    Platform &m_platform;
    Prefs &m_prefs;
    AccountArea m_account;
    KeyRow m_key;
    ServiceAddress m_service;
    LanguageChoice m_language;
    ShortcutRows m_shortcut;
    Provider m_provider;
    bool m_axTrusted = false;
    bool m_micGranted = false;
    QString m_paneNotice;
    bool m_didAutoExpandAdvanced = false;
    std::unique_ptr<Timer> m_ticker;
};

/// Makes the forms of the program's windows, each with a state of its own.
class SettingsForms final : public QObject
{
    Q_OBJECT
public:
    explicit SettingsForms(SettingsView::Needs needs) : m_needs(std::move(needs)) {}

    /// A form that lives as long as its owner.
    Q_INVOKABLE SettingsView *open(QObject *owner) { return new SettingsView(m_needs, owner); }

private:
    SettingsView::Needs m_needs;
};
