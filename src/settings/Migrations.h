#pragma once

#include "values/Provider.h"

#include <QString>

#include <optional>

class Defaults;
class Keychain;

/// Brings the preferences and keys of an earlier version up to date at launch, before any default is
/// registered, so that it sees only what is really stored.
class Migrations
{
public:
    Migrations(Defaults &defaults, Keychain &keychain);

    /// All steps, in the order they depend on each other.
    void run();

    /// The trimmed key when one stored under this provider's account is in fact the other provider's.
    static std::optional<QString> misfiled(const std::optional<QString> &value, Provider provider);

private:
    void migrateToProviderSetting();
    void migrateGroqChatDefault();
    void migrateLanguageDefaultToAuto();
    void migrateMisfiledAPIKeys();

    bool hasPriorInstall() const;
    Provider priorInstallProvider() const;
    /// Moves a key to the provider it belongs to; false when the keychain refused and it must be tried again.
    bool moveMisfiledKey(const QString &key, Provider from, const std::optional<QString> &held, Provider to);

    Defaults &m_defaults;
    Keychain &m_keychain;
};
