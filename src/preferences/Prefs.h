#pragma once

#include "base/ModelPurpose.h"
#include "base/Provider.h"

#include <QDateTime>
#include <QString>

#include <memory>
#include <optional>

class Defaults;
class Keychain;
class Migrations;

/// The preference keys. Screens bind to the same ones.
namespace PrefsKey {
inline const QString provider = QStringLiteral("provider");
inline const QString accountBaseURL = QStringLiteral("accountBaseURL");
inline const QString cleanupEnabled = QStringLiteral("cleanupEnabled");
inline const QString restoreClipboard = QStringLiteral("restoreClipboard");
inline const QString soundsEnabled = QStringLiteral("soundsEnabled");
inline const QString keepFailedRecordings = QStringLiteral("keepFailedRecordings");
inline const QString language = QStringLiteral("language");
inline const QString transcriptionModel = QStringLiteral("transcriptionModel");
inline const QString chatModel = QStringLiteral("chatModel");
inline const QString vocabulary = QStringLiteral("vocabulary");
inline const QString hotkeySpec = QStringLiteral("hotkeySpec");
inline const QString showDashboardOnLaunch = QStringLiteral("showDashboardOnLaunch");
inline const QString advancedExpanded = QStringLiteral("advancedExpanded");
inline const QString accountEmail = QStringLiteral("accountEmail");
inline const QString labsProvider = QStringLiteral("labsProvider");
inline const QString labsAnswerModeExpiresAt = QStringLiteral("labsAnswerModeExpiresAt");
inline const QString keychainKeysMigrated = QStringLiteral("keychainKeysMigrated");
inline const QString groqChatDefaultMigratedTo120b = QStringLiteral("groqChatDefaultMigratedTo120b");
inline const QString languageDefaultMigratedToAuto = QStringLiteral("languageDefaultMigratedToAuto");
} // namespace PrefsKey

/// Typed access to the preferences. Every read looks afresh.
class Prefs
{
public:
    /// `defaultBaseURL` is the service that a user who chose none dictates to.
    Prefs(Defaults &defaults, const QString &defaultBaseURL);
    ~Prefs();
    Prefs(const Prefs &) = delete;
    Prefs &operator=(const Prefs &) = delete;

    /// The chosen provider; the hosted service when none or an unknown one is stored.
    Provider provider() const;

    QString transcriptionModel() const;
    QString chatModel() const;
    /// Stores the trimmed model id; an empty one changes nothing.
    void setModel(const QString &model, ModelPurpose purpose);

    /// The service's base address without trailing slash; the default where the stored one is unusable.
    QString accountBaseURL() const;
    /// The address that the program came with.
    const QString &defaultAccountBaseURL() const { return m_defaultBaseURL; }
    /// The text as a usable base address: https with a host, no query, no fragment; else none.
    static std::optional<QString> validAccountBaseURL(const QString &text);

    QString accountEmail() const;
    void setAccountEmail(const QString &email);

    /// When answer mode ends; none when it is off.
    std::optional<QDateTime> labsAnswerModeExpiresAt() const;
    /// None switches it off.
    void setLabsAnswerModeExpiresAt(const std::optional<QDateTime> &date);

    /// The spoken language's code without spaces and tabs around it; empty for automatic detection.
    QString language() const;
    /// The custom vocabulary, trimmed.
    QString vocabulary() const;
    bool isEnabled(const QString &key) const;

    /// Brings values of an earlier version up to date and registers the defaults. Once, at launch, before
    /// anything reads a preference; what a keychain that cannot be read yet would tell comes when it can.
    void registerDefaults(Keychain &keychain);

    static QString defaultModel(Provider provider, ModelPurpose purpose);

private:
    QString model(const QString &key, ModelPurpose purpose) const;
    void registerDefaults();

    Defaults &m_defaults;
    QString m_defaultBaseURL;
    std::unique_ptr<Migrations> m_migrations;
};
