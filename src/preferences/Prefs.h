#pragma once

#include "base/Provider.h"
#include "preferences/HotkeySpec.h"

#include <QDateTime>
#include <QJsonValue>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

class DefaultsStore;
class Keychain;
class Migrations;

/// The user's preferences. Each is a member that bears its key's name and is read as a call,
/// `soundsEnabled()`; QML binds to it as a property.
///
/// A preference is what is stored or, where that is nothing of its type, its default, which is never written.
/// Every read looks afresh; a change is stored at once and told by its signal.
class Prefs final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool cleanupEnabled MEMBER cleanupEnabled NOTIFY cleanupEnabledChanged)
    Q_PROPERTY(bool restoreClipboard MEMBER restoreClipboard NOTIFY restoreClipboardChanged)
    Q_PROPERTY(bool soundsEnabled MEMBER soundsEnabled NOTIFY soundsEnabledChanged)
    Q_PROPERTY(QString transcriptionModel MEMBER transcriptionModel NOTIFY transcriptionModelChanged)
    Q_PROPERTY(QString chatModel MEMBER chatModel NOTIFY chatModelChanged)
    Q_PROPERTY(QString vocabulary MEMBER vocabularyTyped NOTIFY vocabularyChanged)
    Q_PROPERTY(bool showDashboardOnLaunch MEMBER showDashboardOnLaunch NOTIFY showDashboardOnLaunchChanged)
    Q_PROPERTY(bool advancedExpanded MEMBER advancedExpanded NOTIFY advancedExpandedChanged)
public:
    /// How a value stands in the store: `read` gives none for what holds no such value, and what `write`
    /// gives as undefined is not stored.
    template <typename T>
    struct Form
    {
        std::optional<T> (*read)(const QJsonValue &stored);
        QJsonValue (*write)(const T &value);
    };

    template <typename T>
    class Preference
    {
    public:
        using Signal = void (Prefs::*)();

        Preference(Prefs &owner, const char *key, const Form<T> &form, T byDefault, Signal changed = nullptr)
            : Preference(owner, key, form, std::function<T()>([byDefault] { return byDefault; }), changed)
        {
        }
        /// `byDefault` is asked anew each time.
        Preference(Prefs &owner, const char *key, const Form<T> &form, std::function<T()> byDefault,
                   Signal changed)
            : m_owner(owner),
              m_form(form),
              m_key(QLatin1String(key)),
              m_default(std::move(byDefault)),
              m_changed(changed)
        {
        }

        const QString &key() const { return m_key; }
        T operator()() const
        {
            const std::optional<T> found = stored();
            return found ? *found : m_default();
        }
        operator T() const { return (*this)(); }
        /// What is stored alone.
        std::optional<T> stored() const { return m_form.read(m_owner.stored(m_key)); }

        void set(const T &value) { m_owner.store(m_key, m_form.write(value), m_changed); }
        void remove() { m_owner.store(m_key, QJsonValue::Undefined, m_changed); }

    private:
        friend Prefs;
        /// For the property system, which calls the signal itself.
        void operator=(const T &value) { m_owner.store(m_key, m_form.write(value), nullptr); }

        Prefs &m_owner;
        const Form<T> &m_form;
        QString m_key;
        std::function<T()> m_default;
        Signal m_changed;
    };

    /// `defaultBaseURL` is the service that a user who chose none dictates to.
    Prefs(DefaultsStore &store, const QString &defaultBaseURL);
    ~Prefs() override;

    /// The chosen provider; the hosted service when an unknown one is stored.
    Preference<Provider> provider{*this, "provider", providerName, Provider::sayvane,
                                  &Prefs::providerChanged};
    /// The service's base address; the one that the program came with where the stored one is unusable.
    Preference<QString> accountBaseURL{*this, "accountBaseURL", address, [this] { return m_defaultBaseURL; },
                                       &Prefs::accountBaseURLChanged};
    Preference<bool> cleanupEnabled{*this, "cleanupEnabled", truth, true, &Prefs::cleanupEnabledChanged};
    Preference<bool> restoreClipboard{*this, "restoreClipboard", truth, true,
                                      &Prefs::restoreClipboardChanged};
    Preference<bool> soundsEnabled{*this, "soundsEnabled", truth, true, &Prefs::soundsEnabledChanged};
    Preference<bool> keepFailedRecordings{*this, "keepFailedRecordings", truth, false};
    /// The spoken language's code; empty for automatic detection.
    Preference<QString> language{*this, "language", code, QString(), &Prefs::languageChanged};
    /// The models of the user's own provider, as typed; by default those of the provider at launch.
    Preference<QString> transcriptionModel{*this, "transcriptionModel", text,
                                           [this] { return launchModel(ModelPurpose::transcription); },
                                           &Prefs::transcriptionModelChanged};
    Preference<QString> chatModel{*this, "chatModel", text,
                                  [this] { return launchModel(ModelPurpose::chat); },
                                  &Prefs::chatModelChanged};
    /// The custom vocabulary as typed, commas and all.
    Preference<QString> vocabularyTyped{*this, "vocabulary", text, QStringLiteral("Sayvane, Groq, OpenAI"),
                                        &Prefs::vocabularyChanged};
    Preference<HotkeySpec> hotkeySpec{*this, "hotkeySpec", shortcut, HotkeySpec(), &Prefs::hotkeySpecChanged};
    Preference<bool> showDashboardOnLaunch{*this, "showDashboardOnLaunch", truth, false,
                                           &Prefs::showDashboardOnLaunchChanged};
    Preference<bool> advancedExpanded{*this, "advancedExpanded", truth, false,
                                      &Prefs::advancedExpandedChanged};
    /// The address of the account that is signed in; empty without one.
    Preference<QString> accountEmail{*this, "accountEmail", email, QString()};
    /// The assistant last chosen in Labs, by its raw value.
    Preference<QString> labsProvider{*this, "labsProvider", text, QString(), &Prefs::labsProviderChanged};
    /// When answer mode ends; none while it is off.
    Preference<std::optional<QDateTime>> labsAnswerModeExpiresAt{*this, "labsAnswerModeExpiresAt", date,
                                                                 std::nullopt};

    // Steps of the migrations that are done, and that the first of them has yet to be decided.
    Preference<bool> keychainKeysMigrated{*this, "keychainKeysMigrated", truth, false};
    Preference<bool> groqChatDefaultMigratedTo120b{*this, "groqChatDefaultMigratedTo120b", truth, false};
    Preference<bool> languageDefaultMigratedToAuto{*this, "languageDefaultMigratedToAuto", truth, false};
    Preference<bool> firstStartUndecided{*this, "firstStartUndecided", truth, false};

    /// The custom vocabulary, trimmed.
    QString vocabulary() const { return vocabularyTyped().trimmed(); }
    /// Stores the trimmed model id; an empty one changes nothing.
    void setModel(const QString &model, ModelPurpose purpose);
    /// The address that the program came with.
    const QString &defaultAccountBaseURL() const { return m_defaultBaseURL; }

    /// What is stored under the key, of whatever type; undefined when nothing is.
    QJsonValue stored(const QString &key) const;

    /// Brings values of an earlier version up to date and settles the defaults. Once, at launch, before
    /// anything reads a preference; what a keychain that cannot be read yet would tell comes when it can.
    void registerDefaults(Keychain &keychain);

    /// The text as a usable base address: https with a host, no query, no fragment; else none.
    static std::optional<QString> validAccountBaseURL(const QString &text);

Q_SIGNALS:
    void providerChanged();
    void accountBaseURLChanged();
    void cleanupEnabledChanged();
    void restoreClipboardChanged();
    void soundsEnabledChanged();
    void languageChanged();
    void transcriptionModelChanged();
    void chatModelChanged();
    void vocabularyChanged();
    void hotkeySpecChanged();
    void showDashboardOnLaunchChanged();
    void advancedExpandedChanged();
    void labsProviderChanged();
    /// Any of them, by its key.
    void changed(const QString &key);

private:
    static const Form<bool> truth;
    static const Form<Provider> providerName;
    static const Form<HotkeySpec> shortcut;
    static const Form<std::optional<QDateTime>> date;
    static const Form<QString> text;
    static const Form<QString> address; ///< https with a host, read without trailing slash
    static const Form<QString> email;   ///< without white space around it; not stored when empty
    static const Form<QString> code;    ///< read without spaces and tabs around it

    void store(const QString &key, const QJsonValue &value, void (Prefs::*signal)());
    QString launchModel(ModelPurpose purpose) const;

    DefaultsStore &m_store;
    QString m_defaultBaseURL;
    std::optional<Provider> m_launchProvider; // the one that the models' defaults are of
    std::unique_ptr<Migrations> m_migrations;
};
