#include "settings/Migrations.h"

#include "settings/Defaults.h"
#include "settings/Keychain.h"
#include "settings/Prefs.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QStringList legacyOpenAIModels{u"gpt-4o-transcribe"_s, u"gpt-4o-mini-transcribe"_s, u"gpt-4o-mini"_s,
                                     u"whisper-1"_s};
const QStringList retiredChatModels{u"llama-3.1-8b-instant"_s, u"llama-3.3-70b-versatile"_s};

// A value under any of these keys marks an earlier installation.
const QStringList priorInstallKeys{
    PrefsKey::cleanupEnabled,
    PrefsKey::restoreClipboard,
    PrefsKey::soundsEnabled,
    PrefsKey::language,
    PrefsKey::transcriptionModel,
    PrefsKey::chatModel,
    PrefsKey::vocabulary,
    PrefsKey::hotkeySpec,
    PrefsKey::showDashboardOnLaunch,
    PrefsKey::advancedExpanded,
    PrefsKey::keychainKeysMigrated,
    PrefsKey::groqChatDefaultMigratedTo120b,
    PrefsKey::languageDefaultMigratedToAuto,
};

const QString groqPrefix = u"gsk_"_s;
const QString openAIPrefix = u"sk-"_s;

bool isEmpty(const std::optional<QString> &value)
{
    return !value || value->isEmpty();
}

} // namespace

Migrations::Migrations(Defaults &defaults, Keychain &keychain) : m_defaults(defaults), m_keychain(keychain)
{
}

void Migrations::run()
{
    migrateToProviderSetting();
    migrateGroqChatDefault();
    migrateLanguageDefaultToAuto();
    migrateMisfiledAPIKeys();
}

void Migrations::migrateToProviderSetting()
{
    const auto stored = [this](const QString &key) {
        return m_defaults.storedText(key).value_or(QString()).trimmed();
    };
    const auto choose = [this](Provider provider) {
        m_defaults.set(PrefsKey::provider, Providers::rawValue(provider));
    };

    if (retiredChatModels.contains(stored(PrefsKey::chatModel)))
        m_defaults.remove(PrefsKey::chatModel);
    if (m_defaults.storedText(PrefsKey::provider))
        return;
    if (!hasPriorInstall())
        return choose(Provider::sayvane);
    if (priorInstallProvider() == Provider::openai)
        return choose(Provider::openai);
    for (const QString &key : {PrefsKey::transcriptionModel, PrefsKey::chatModel}) {
        const QString model = stored(key);
        if (model.isEmpty() || legacyOpenAIModels.contains(model))
            m_defaults.remove(key);
    }
    choose(Provider::groq);
}

bool Migrations::hasPriorInstall() const
{
    if (std::ranges::any_of(priorInstallKeys,
                            [this](const QString &key) { return m_defaults.isStored(key); }))
        return true;
    return std::ranges::any_of(Providers::apiKeyProviders, [this](Provider provider) {
        const Keychain::ReadResult item = m_keychain.read(Providers::keychainAccount(provider));
        return !item.isReliable() || !isEmpty(item.value);
    });
}

Provider Migrations::priorInstallProvider() const
{
    const Keychain::ReadResult groq = m_keychain.read(Providers::keychainAccount(Provider::groq));
    const Keychain::ReadResult openai = m_keychain.read(Providers::keychainAccount(Provider::openai));
    if (!groq.isReliable() || !openai.isReliable() || !isEmpty(groq.value))
        return Provider::groq;
    if (!isEmpty(openai.value) && !misfiled(openai.value, Provider::openai))
        return Provider::openai;
    return Provider::groq;
}

std::optional<QString> Migrations::misfiled(const std::optional<QString> &value, Provider provider)
{
    const QString key = value.value_or(QString()).trimmed();
    const bool isGroqKey = key.startsWith(groqPrefix);
    const bool isOpenAIKey = key.startsWith(openAIPrefix);
    if (provider == Provider::groq && isOpenAIKey && !isGroqKey)
        return key;
    if (provider == Provider::openai && isGroqKey && !isOpenAIKey)
        return key;
    return std::nullopt;
}

void Migrations::migrateGroqChatDefault()
{
    if (m_defaults.boolean(PrefsKey::groqChatDefaultMigratedTo120b))
        return;
    // Marked first, so that the step never repeats.
    m_defaults.set(PrefsKey::groqChatDefaultMigratedTo120b, true);
    if (m_defaults.textOrEmpty(PrefsKey::chatModel).trimmed() == "openai/gpt-oss-20b"_L1)
        m_defaults.set(PrefsKey::chatModel, u"openai/gpt-oss-120b"_s);
}

void Migrations::migrateLanguageDefaultToAuto()
{
    if (m_defaults.boolean(PrefsKey::languageDefaultMigratedToAuto))
        return;
    m_defaults.set(PrefsKey::languageDefaultMigratedToAuto, true);
    if (m_defaults.textOrEmpty(PrefsKey::language).trimmed().toLower() == "en"_L1)
        m_defaults.set(PrefsKey::language, QString());
}

void Migrations::migrateMisfiledAPIKeys()
{
    if (m_defaults.boolean(PrefsKey::keychainKeysMigrated))
        return;
    const Keychain::ReadResult groq = m_keychain.read(Providers::keychainAccount(Provider::groq));
    const Keychain::ReadResult openai = m_keychain.read(Providers::keychainAccount(Provider::openai));
    if (!groq.isReliable() || !openai.isReliable())
        return; // perhaps locked; the next launch tries again

    if (const auto key = misfiled(openai.value, Provider::openai)) {
        if (!moveMisfiledKey(*key, Provider::openai, groq.value, Provider::groq))
            return;
    } else if (const auto mirrored = misfiled(groq.value, Provider::groq)) {
        if (!moveMisfiledKey(*mirrored, Provider::groq, openai.value, Provider::openai))
            return;
    }
    m_defaults.set(PrefsKey::keychainKeysMigrated, true);
}

bool Migrations::moveMisfiledKey(const QString &key, Provider from, const std::optional<QString> &held,
                                 Provider to)
{
    constexpr auto accessibility = Keychain::Accessibility::afterFirstUnlock;
    const QString heldKey = held.value_or(QString()).trimmed();
    if (!heldKey.isEmpty() && heldKey != key)
        return true; // two different keys: nobody can say which one is meant
    if (heldKey.isEmpty() &&
        m_keychain.save(key, Providers::keychainAccount(to), accessibility) != SecretStatus::success)
        return false;
    return m_keychain.save(QString(), Providers::keychainAccount(from), accessibility) ==
           SecretStatus::success;
}
