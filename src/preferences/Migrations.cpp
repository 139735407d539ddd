#include "preferences/Migrations.h"

#include "preferences/Defaults.h"
#include "preferences/Keychain.h"
#include "preferences/Prefs.h"

#include <QPointer>
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

// Stored while a first start has yet to be decided and the user has set something meanwhile: at the next
// start that would look like an earlier installation.
const QString firstStart = u"firstStartUndecided"_s;

const QString groqPrefix = u"gsk_"_s;
const QString openAIPrefix = u"sk-"_s;

bool isEmpty(const std::optional<QString> &value)
{
    return !value || value->isEmpty();
}

} // namespace

Migrations::Migrations(Defaults &defaults, Keychain &keychain, std::function<void()> providerSettled)
    : m_defaults(defaults),
      m_keychain(keychain),
      m_providerSettled(std::move(providerSettled))
{
}

void Migrations::run()
{
    if (retiredChatModels.contains(m_defaults.storedText(PrefsKey::chatModel).value_or(QString()).trimmed()))
        m_defaults.remove(PrefsKey::chatModel);
    m_hadPreferences = !m_defaults.isStored(firstStart) &&
                       std::ranges::any_of(priorInstallKeys,
                                           [this](const QString &key) { return m_defaults.isStored(key); });
    if (!m_hadPreferences)
        connect(&m_defaults, &Defaults::changed, this, &Migrations::markFirstStart);
    connect(&m_keychain, &Keychain::changed, this, &Migrations::goOn);
    goOn();
}

void Migrations::goOn()
{
    if (!m_settled) {
        if (!migrateToProviderSetting())
            return; // the later steps leave marks that would tell of an earlier version
        m_settled = true;
        m_defaults.remove(firstStart);
        migrateGroqChatDefault();
        migrateLanguageDefaultToAuto();
        if (m_providerSettled)
            m_providerSettled();
    }
    migrateMisfiledAPIKeys();
}

void Migrations::markFirstStart(const QString &key)
{
    if (!m_settled && priorInstallKeys.contains(key))
        m_defaults.set(firstStart, true);
}

bool Migrations::migrateToProviderSetting()
{
    const auto stored = [this](const QString &key) {
        return m_defaults.storedText(key).value_or(QString()).trimmed();
    };
    const auto choose = [this](Provider provider) {
        m_defaults.set(PrefsKey::provider, Providers::rawValue(provider));
    };

    if (m_defaults.storedText(PrefsKey::provider))
        return true;
    for (const Provider provider : Providers::apiKeyProviders) {
        if (m_keychain.read(Providers::keychainAccount(provider)).isPending())
            return false;
    }
    if (!hasPriorInstall()) {
        choose(Provider::sayvane);
        return true;
    }
    if (priorInstallProvider() == Provider::openai) {
        choose(Provider::openai);
        return true;
    }
    for (const QString &key : {PrefsKey::transcriptionModel, PrefsKey::chatModel}) {
        const QString model = stored(key);
        if (model.isEmpty() || legacyOpenAIModels.contains(model))
            m_defaults.remove(key);
    }
    choose(Provider::groq);
    return true;
}

bool Migrations::hasPriorInstall() const
{
    if (m_hadPreferences)
        return true;
    return std::ranges::any_of(Providers::apiKeyProviders, [this](Provider provider) {
        const Keychain::ReadResult item = m_keychain.read(Providers::keychainAccount(provider));
        return !(item.isReliable() || item.isAbsent()) || !isEmpty(item.value);
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

QCoro::Task<> Migrations::migrateMisfiledAPIKeys()
{
    if (m_moving || m_defaults.boolean(PrefsKey::keychainKeysMigrated))
        co_return;
    const Keychain::ReadResult groq = m_keychain.read(Providers::keychainAccount(Provider::groq));
    const Keychain::ReadResult openai = m_keychain.read(Providers::keychainAccount(Provider::openai));
    if (!groq.isReliable() || !openai.isReliable())
        co_return; // perhaps locked; as soon as it is not, or at the next launch

    const QPointer self(this);
    m_moving = true; // once a launch: a keychain that refuses is not asked over and over
    bool done = true;
    if (const auto key = misfiled(openai.value, Provider::openai))
        done = co_await moveMisfiledKey(*key, Provider::openai, groq.value, Provider::groq);
    else if (const auto mirrored = misfiled(groq.value, Provider::groq))
        done = co_await moveMisfiledKey(*mirrored, Provider::groq, openai.value, Provider::openai);
    if (self && done)
        m_defaults.set(PrefsKey::keychainKeysMigrated, true);
}

QCoro::Task<bool> Migrations::moveMisfiledKey(QString key, Provider from, std::optional<QString> held,
                                              Provider to)
{
    constexpr auto accessibility = Keychain::Accessibility::afterFirstUnlock;
    const QPointer keychain(&m_keychain);
    const QString heldKey = held.value_or(QString()).trimmed();
    if (!heldKey.isEmpty() && heldKey != key)
        co_return true; // two different keys: nobody can say which one is meant
    if (heldKey.isEmpty()) {
        const int32_t saved = co_await keychain->save(key, Providers::keychainAccount(to), accessibility);
        if (saved != SecretStatus::success || !keychain)
            co_return false;
    }
    const int32_t removed =
        co_await keychain->save(QString(), Providers::keychainAccount(from), accessibility);
    co_return removed == SecretStatus::success;
}
