#pragma once

#include "base/Provider.h"

#include <QCoroTask>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

class Keychain;
class Prefs;

/// Brings the preferences and keys of an earlier version up to date at launch, from what is really stored
/// and not from defaults.
///
/// What depends on the keys is not decided while the keychain has yet to answer; it is as soon as it has.
class Migrations final : public QObject
{
    Q_OBJECT
public:
    /// `providerSettled` is called once it is known which provider an earlier version dictated to.
    Migrations(Prefs &prefs, Keychain &keychain, std::function<void()> providerSettled = {});

    /// All steps, in the order they depend on each other.
    void run();

    /// The trimmed key when one stored under this provider's account is in fact the other provider's.
    static std::optional<QString> misfiled(const std::optional<QString> &value, Provider provider);

private:
    void goOn();
    void markFirstStart(const QString &key);
    /// False when the keychain has yet to answer.
    bool migrateToProviderSetting();
    void migrateGroqChatDefault();
    void migrateLanguageDefaultToAuto();
    QCoro::Task<> migrateMisfiledAPIKeys();

    bool hasPriorInstall() const;
    Provider priorInstallProvider() const;
    /// Moves a key to the provider it belongs to; false when the keychain refused and it must be tried again.
    QCoro::Task<bool> moveMisfiledKey(QString key, Provider from, std::optional<QString> held, Provider to);

    Prefs &m_prefs;
    Keychain &m_keychain;
    std::function<void()> m_providerSettled;
    bool m_hadPreferences = false; // as the launch found it
    bool m_settled = false;
    bool m_moving = false;
};
